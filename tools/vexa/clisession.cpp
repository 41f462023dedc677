// SPDX-License-Identifier: Apache-2.0
#include "cli.h"
#include "runcommands.h"

#include "sensorinfo.h"
#include "text.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <iostream>

std::vector<AddCommand> CliCommands() {
    return {
        AddPingCommand, AddNextNameCommand, AddStatusCommand, AddLsCommand,    AddStatCommand,  AddGetCommand,
        AddPutCommand,  AddCpCommand,       AddRmCommand,     AddRmdirCommand, AddMkdirCommand, AddMvCommand,
        AddRunCommand,  AddBackupCommand,   AddMethodCommand, AddDataCommand,
    };
}

CliSession::CliSession() = default;

CliSession::~CliSession() {
    if (m_sensor)
        m_sensor->Disconnect(0);
}

bool CliSession::Create(const std::wstring& host) {
    ISensorAddress address(host);
    if (!address.IsValid())
        return false;
    // Sensor objects come from the VEXA sensor type (the module objects this program is built with), as
    // the studio makes them.
    ISensorInfo* info = ISensorInfo::FindSensorType(L"VEXA");
    ISensorObject* made = info ? info->CreateSensorObject(nullptr, address) : nullptr;
    m_sensor = SensorRef<VEXASensorObject>::AdoptIf(made);
    return static_cast<bool>(m_sensor);
}

bool CliSession::Connect(const std::wstring& host, int* error) {
    if (!m_sensor && !Create(host)) {
        if (error)
            *error = kErrInvalid;
        return false;
    }
    if (m_sensor->IsOnline(true))
        return true;
    m_sensor->GoOnline();
    if (m_sensor->IsOnline(true))
        return true;
    if (error)
        *error = m_sensor->GetLastLinkError() ? m_sensor->GetLastLinkError() : kWsaNotConn;
    return false;
}

std::wstring HostOperand(const std::string& text) {
    std::string host = text;
    if (!host.empty() && host.front() == '@')
        host.erase(0, 1);
    if (!host.empty() && host.back() == ':')
        host.pop_back();
    return FromUtf8(host);
}

void PrintError(const CliContext&, const std::string& what, int error, const std::wstring& detail) {
    // Errors are shown even with --quiet: they are the result.
    std::cerr << "vexa: " << what;
    if (error != 0)
        std::cerr << ": " << ToUtf8(DescribeError(error));
    if (!detail.empty())
        std::cerr << ": " << ToUtf8(detail);
    std::cerr << "\n";
}
