#include "platform/zenkctl/Log.h"

#include <syslog.h>

#include <cstdarg>

namespace {

void VLog(int priority, const char* fmt, va_list ap) {
    if (fmt != nullptr) vsyslog(priority | LOG_USER, fmt, ap);
}

const char* OrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

LogCfg* Log_CfgInterface() {
    static LogCfg cfg;
    return &cfg;
}

void Log_SetProductInfo(const char* name, const char* version, const char* build, const char* option) {
    LogCfg* cfg = Log_CfgInterface();
    cfg->productName = OrEmpty(name);
    cfg->productVersion = OrEmpty(version);
    cfg->productBuild = OrEmpty(build);
    cfg->productOption = OrEmpty(option);
}

bool Log_InitWithSyslogSimpleInt(const char* appName, LogCfg* cfg, const char* ident) {
    if (cfg == nullptr || ident == nullptr || *ident == '\0') return false;
    cfg->appName = OrEmpty(appName);
    cfg->ident = ident;
    // openlog keeps the pointer, so hand it the string that lives as long as the configuration.
    openlog(cfg->ident.c_str(), LOG_PID, LOG_USER);
    cfg->syslogOpen = true;
    return true;
}

void Log_Error(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    VLog(LOG_ERR, fmt, ap);
    va_end(ap);
}

void Log_Warning(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    VLog(LOG_WARNING, fmt, ap);
    va_end(ap);
}

void Log_Info(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    VLog(LOG_INFO, fmt, ap);
    va_end(ap);
}
