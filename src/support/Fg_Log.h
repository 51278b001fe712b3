/** The text log of the file parsers. */
#ifndef SUPPORT_FG_LOG_H
#define SUPPORT_FG_LOG_H

#include <cstdarg>
#include <cstdio>

/**
 * A log with one line per record. No file is ever opened, so nothing is written, although the parsers log
 * through it. Takes no lock.
 */
class Fg_Log {
public:
    explicit Fg_Log(const char* path);
    Fg_Log(const Fg_Log&) = delete;
    Fg_Log& operator=(const Fg_Log&) = delete;
    ~Fg_Log();

    /** Does nothing. */
    void OpenLogFile(const char* path);
    void CloseLogFile();
    /** Callers pass the name of their function; it is not written. */
    void Func(const char* name);
    /** The local time with a line end, in a buffer of the system that the next call overwrites. */
    char* GetTimestamp();
    /** Writes as printf does, without a line end of its own. */
    void UsrDbg(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /** Does nothing. */
    void Info(const char* text);
    void Info(const char* text, int value);
    void Error(const char* text);
    void ErrorInt(const char* text, const char* name, int value);
    void ErrorDouble(const char* text, const char* name, double value);
    /** Writes the header of a log. */
    void WriteWelcome();

private:
    void print(const char* format, std::va_list arguments);
    void write(const char* format, ...) __attribute__((format(printf, 2, 3)));

    std::FILE* m_stream = nullptr;
};

#endif
