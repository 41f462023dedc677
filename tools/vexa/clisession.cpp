#include "cli.h"

#include "sensorinfo.h"
#include "text.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <iostream>

std::vector<AddCommand> CliCommands() {
    return {
        AddPingCommand,  AddNextNameCommand, AddStatusCommand, AddLsCommand,     AddStatCommand,
        AddGetCommand,   AddPutCommand,      AddCpCommand,     AddRmCommand,     AddRmdirCommand,
        AddMkdirCommand, AddMvCommand,       AddRunCommand,    AddBackupCommand, AddMethodCommand,
    };
}

CliSession::~CliSession() {
    if (m_sensor) {
        m_sensor->Disconnect(0);
        m_sensor->DecRef();
    }
}

bool CliSession::Create(const std::wstring& host) {
    ISensorAddress address(host);
    if (!address.IsValid())
        return false;
    // Sensor objects come from the VEXA sensor type (the module objects this program is built with), as
    // the studio makes them.
    ISensorInfo* info = ISensorInfo::FindSensorType(L"VEXA");
    ISensorObject* made = info ? info->CreateSensorObject(nullptr, address) : nullptr;
    m_sensor = dynamic_cast<VEXASensorObject*>(made);
    if (made && !m_sensor)
        made->DecRef();
    return m_sensor != nullptr;
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

std::string Narrow(const std::wstring& text) {
    return ToUtf8(text);
}

std::wstring Widen(const std::string& text) {
    return FromUtf8(text);
}

std::wstring HostOperand(const std::string& text) {
    std::string host = text;
    if (!host.empty() && host.front() == '@')
        host.erase(0, 1);
    if (!host.empty() && host.back() == ':')
        host.pop_back();
    return Widen(host);
}

void PrintError(const CliContext&, const std::string& what, int error, const std::wstring& detail) {
    // Errors are shown even with --quiet: they are the result.
    std::cerr << "vexa: " << what;
    if (error != 0)
        std::cerr << ": " << Narrow(DescribeError(error));
    if (!detail.empty())
        std::cerr << ": " << Narrow(detail);
    std::cerr << "\n";
}
