#include "support/Fg_Log.h"

#include <cstdarg>
#include <ctime>
#include <string>

Fg_Log::Fg_Log(const char* path) {
    if (path != nullptr) OpenLogFile(path);
}

Fg_Log::~Fg_Log() { CloseLogFile(); }

void Fg_Log::OpenLogFile(const char*) {}

void Fg_Log::CloseLogFile() {
    if (m_stream == nullptr) return;
    std::fflush(m_stream);
    std::fclose(m_stream);
    m_stream = nullptr;
}

void Fg_Log::Func(const char*) {}

char* Fg_Log::GetTimestamp() {
    const std::time_t now = std::time(nullptr);
    return std::asctime(std::localtime(&now));
}

void Fg_Log::UsrDbg(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    print(format, arguments);
    va_end(arguments);
}

void Fg_Log::write(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    print(format, arguments);
    va_end(arguments);
    if (m_stream != nullptr) std::fflush(m_stream);
}

void Fg_Log::print(const char* format, std::va_list arguments) {
    if (m_stream != nullptr) std::vfprintf(m_stream, format, arguments);
}

void Fg_Log::Info(const char*) {}

void Fg_Log::Info(const char* text, int value) { write("tandrilIV::Info >> %s >> %d;\n", text, value); }

void Fg_Log::Error(const char* text) { write("tandrilIV::Error >> %s;\n", text); }

void Fg_Log::ErrorInt(const char* text, const char* name, int value) {
    write("tandrilIV::Error >> %s >> %s >> %d;\n", text, name, value);
}

void Fg_Log::ErrorDouble(const char* text, const char* name, double value) {
    char number[32];
    std::snprintf(number, sizeof number, "%.*g", 12, value);
    write("tandrilIV::Error >> %s >> %s >> %s;\n", text, name, number);
}

void Fg_Log::WriteWelcome() {
    if (m_stream == nullptr) return;
    const std::string rule(73, '-');
    write("%s\n%s\n%s%s%s\n", rule.c_str(), "Norvane AG", "Contents: Log details for tandril Dll\n",
          GetTimestamp(), rule.c_str());
}
