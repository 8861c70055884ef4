#pragma once

#include <string>

// The platform's own log: its errors and notices go to syslog, facility user, under the identity the
// application hands over at start-up.
struct LogCfg {
    std::string appName;
    std::string ident;
    std::string productName;
    std::string productVersion;
    std::string productBuild;
    std::string productOption;
    bool syslogOpen = false;
};

// The process-wide configuration the Log_ calls fill in.
LogCfg* Log_CfgInterface();
void Log_SetProductInfo(const char* name, const char* version, const char* build, const char* option);
// Opens syslog with the identity ident (option LOG_PID, facility LOG_USER). False for a null cfg or
// an empty identity.
bool Log_InitWithSyslogSimpleInt(const char* appName, LogCfg* cfg, const char* ident);

void Log_Error(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void Log_Warning(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void Log_Info(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
