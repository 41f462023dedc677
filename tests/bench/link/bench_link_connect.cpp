// SPDX-License-Identifier: Apache-2.0
// Connect-and-hello latency of the instrument link on loopback: the sensor goes on line (non-blocking
// connect, hello frame) and off line again, many times; prints the distribution.
#include "loopbackpeer.h"
#include "vexasensorobject.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv) {
    int rounds = argc > 1 ? std::atoi(argv[1]) : 200;
    LoopbackPeer peer([](int s) {
        uint8_t hello[42];
        LoopbackPeer::ReadExactly(s, hello, sizeof hello, 2000);
    }, kLinkPort, {}, 4096); // a deep queue: the rounds come faster than the peer accepts
    if (!peer.listening()) {
        std::fprintf(stderr, "cannot listen on %s:4840\n", peer.address().c_str());
        return 1;
    }
    auto* sensor = new VEXASensorObject(nullptr, ISensorAddress(peer.host()));
    std::vector<double> ms;
    for (int i = 0; i < rounds; ++i) {
        auto start = std::chrono::steady_clock::now();
        sensor->Connect(true);
        auto end = std::chrono::steady_clock::now();
        if (!sensor->IsLinkOpen()) {
            std::fprintf(stderr, "round %d: connect failed with %d\n", i, sensor->GetLastLinkError());
            return 1;
        }
        sensor->Connect(false);
        ms.push_back(std::chrono::duration<double, std::milli>(end - start).count());
    }
    sensor->DecRef();
    std::sort(ms.begin(), ms.end());
    double sum = 0;
    for (double v : ms)
        sum += v;
    std::printf(
        "connect+hello on loopback, %d rounds: mean %.3f ms, median %.3f ms, p95 %.3f ms, max %.3f ms\n",
        rounds, sum / ms.size(), ms[ms.size() / 2], ms[ms.size() * 95 / 100], ms.back());
    return 0;
}
