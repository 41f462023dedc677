// SPDX-License-Identifier: Apache-2.0
#include "acquisitionplan.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "text.h"
#include "vexafileref.h"
#include "vexamethod.h"

bool AcquisitionPlan::Load(const std::string& methodJson, std::string* problem) {
    nlohmann::json document = nlohmann::json::parse(methodJson, nullptr, false);
    if (document.is_discarded() || !document.is_object()) {
        *problem = "the method file is not a JSON document";
        return false;
    }
    VexaFileRef file;
    file.SetDocument(std::move(document));
    const VexaMethod method(file);
    if (!method.IsValid()) {
        *problem = "not a method: " + ToUtf8(method.GetInvalidReason());
        return false;
    }
    runSeconds = static_cast<double>(method.GetRunTimeSeconds());
    if (runSeconds <= 0) {
        *problem = "the method has no run time (no end event after its start)";
        return false;
    }
    const VexaGcProgram gc = method.getGcProgram();
    initialTemp = gc.initialTemp;
    initialHold = gc.initialHold;
    rate = gc.rate;
    finalTemp = std::max(gc.finalTemp, gc.initialTemp);
    const VexaMassRange range = method.getMassRange();
    sim = method.getScanMode() == VexaMethod::kSim;
    massLow = range.massLow;
    massHigh = range.massHigh;
    masses.clear();
    if (sim) {
        for (int ion : range.simIons)
            if (ion >= 1 && ion <= 2000)
                masses.push_back(static_cast<float>(ion));
        std::sort(masses.begin(), masses.end());
        masses.erase(std::unique(masses.begin(), masses.end()), masses.end());
    } else {
        for (int mass = std::max(massLow, 1); mass <= std::min(massHigh, 2000); ++mass)
            masses.push_back(static_cast<float>(mass));
    }
    if (masses.empty()) {
        *problem = sim ? "the SIM method names no ions" : "the method's mass range is empty";
        return false;
    }
    return true;
}

double AcquisitionPlan::OvenTemp(double seconds) const {
    if (seconds <= initialHold || rate <= 0)
        return initialTemp;
    return std::min(finalTemp, initialTemp + (seconds - initialHold) * rate / 60.0);
}

double AcquisitionPlan::SecondsToReach(double temperature) const {
    if (temperature <= initialTemp)
        return 0;
    if (rate <= 0 || temperature > finalTemp)
        return INFINITY;
    return initialHold + (temperature - initialTemp) * 60.0 / rate;
}

std::uint32_t AcquisitionPlan::ScanCount() const {
    return static_cast<std::uint32_t>(std::ceil(runSeconds * 1000.0 / kScanIntervalMs));
}
