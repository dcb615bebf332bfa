#include "plat/LogDestFile.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/LogRegistry.h"
#include "plat/Time.h"
#include "plat/env.h"
#include "plat/file.h"
#include "plat/logRotation.h"
#include "plat/path.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace plat {
namespace {

constexpr int headerWidth = 79;
constexpr int64_t ticksPerMs = 10000;

StringParameter& logDir() {
    static StringParameter param("LogDir", LocKey("plat_param_logdir"), "");
    return param;
}

StringParameter& logFile() {
    static StringParameter param("LogFile", LocKey("plat_param_logfile"), "");
    return param;
}

IntParameter& logKeepDays() {
    static IntParameter param("LogKeepDays", LocKey("plat_param_log_keep_days"), 30, /*isAdvanced=*/false,
                              /*owner=*/nullptr, 0, 0x7fffffff);
    return param;
}

BoolParameter& compactLog() {
    static BoolParameter param("CompactLog",
                               "Whether to produce more compact logging lines for readability.  Also produces times "
                               "in local timezone instead of UTC",
                               /*defaultValue=*/false, /*isAdvanced=*/true);
    return param;
}

/// Enters the parameters and destinations before anybody looks for them by name.
const struct Registration {
    Registration() {
        logKeepDays();
        compactLog();
        LogDestFile::stderrDest();
        LogDestFile::fileDest();
    }
} registration;

String& programName() {
    static String* const name = new String(program_invocation_short_name);
    return *name;
}

const char* hostName() {
    static char name[256];
    if (!name[0]) {
        if (gethostname(name, sizeof(name) - 1) != 0 || !name[0])
            std::strcpy(name, "localhost");
        name[std::strcspn(name, ".")] = 0;
    }
    return name;
}

/// The priority of syslog (RFC 5424 6.2.1) with facility "user".
int syslogPriority(int level) {
    constexpr int facilityUser = 8;
    if (level <= 0)
        return facilityUser + 3;
    if (level <= 5)
        return facilityUser + 4;
    if (level <= 10)
        return facilityUser + 5;
    return facilityUser + (level <= 30 ? 6 : 7);
}

const char* colourOf(int level) {
    if (level < 6)
        return "31;1";
    if (level <= 10)
        return "31";
    return level <= 30 ? "36" : "0";
}

bool isColourTerminal(FILE* stream) {
    const char* const term = std::getenv("TERM");
    return stream && term && isatty(fileno(stream)) == 1 &&
           (std::strstr(term, "xterm") || std::strstr(term, "ansi") || std::strstr(term, "color"));
}

String logPath(const String& dir, const String& file) {
    DString filePath;
    expandEnv(filePath, file.c_str());
    if (filePath.isEmpty())
        throw Exception("no log file is set");
    DString dirPath;
    expandEnv(dirPath, dir.c_str());
    if (path::isAbsolute(filePath.c_str()) || dirPath.isEmpty())
        return filePath.take();
    return path::join(dirPath.c_str(), filePath.c_str());
}

} // namespace

LogDestFile::LogDestFile(const char* destName, FILE* openStream)
    : LogDest(destName), stream(openStream), isLogFile(false), enabled(true), colour(isColourTerminal(openStream)) {}

LogDestFile::LogDestFile(const char* destName) : LogDest(destName), stream(nullptr), isLogFile(true), enabled(false) {
    logDir().addCallback(this);
    logFile().addCallback(this);
}

LogDestFile::~LogDestFile() {
    if (!isLogFile)
        return;
    logDir().removeCallback(this);
    logFile().removeCallback(this);
    close();
}

LogDestFile& LogDestFile::stderrDest() {
    static LogDestFile* const dest = new LogDestFile("stderr", stderr);
    return *dest;
}

LogDestFile& LogDestFile::fileDest() {
    static LogDestFile* const dest = new LogDestFile("file");
    return *dest;
}

void LogDestFile::setFileEnabled(bool enabled) { fileDest().setEnabled(enabled); }

void LogDestFile::setProgramName(const char* name) { programName() = logSafeText(strOrEmpty(name)).c_str(); }

void LogDestFile::setEnabled(bool isEnabled) {
    {
        const std::lock_guard lock(mutex);
        enabled = isEnabled;
        failed = false;
        if (!enabled)
            close();
    }
    if (isEnabled && LogRegistry::isActive())
        LogRegistry::instance().apply(); // hands over what waited for this file
}

void LogDestFile::setHeader(const char* text) {
    const std::lock_guard lock(mutex);
    DString wrapped(text);
    wrapped.wordWrap(headerWidth);
    if (!wrapped.isEmpty() && wrapped[wrapped.len() - 1] != '\n')
        wrapped.append("\n");
    header = wrapped.take();
}

void LogDestFile::setMaxSize(int64_t sizeBytes, Callback* target) {
    const std::lock_guard lock(mutex);
    maxSizeBytes = sizeBytes;
    callback = target;
    ended = false;
}

void LogDestFile::reopenIfMoved() {
    const std::lock_guard lock(mutex);
    if (!isLogFile || !stream)
        return;
    try {
        if (fileIsSameAsFd(openPath.c_str(), fileno(stream)))
            return;
    } catch (const Exception&) {
        // A path that can't be looked at no longer names our file.
    }
    close();
}

void LogDestFile::close() {
    const std::lock_guard lock(mutex);
    if (!isLogFile || !stream)
        return;
    if (std::fclose(stream) != 0)
        std::fprintf(stderr, "Error closing log file: %s\n", std::strerror(errno));
    stream = nullptr;
}

void LogDestFile::parameterChanged(ConfigParameter*, int) {
    const std::lock_guard lock(mutex);
    close();
    failed = false;
}

bool LogDestFile::isActive() {
    const std::lock_guard lock(mutex);
    return enabled && !ended && ensureOpen();
}

void LogDestFile::write(int level, const char* srcName, const char* text) {
    const std::lock_guard lock(mutex);
    if (!enabled || ended || !ensureOpen())
        return;
    writeLine(level, srcName, text);
    checkSize();
}

void LogDestFile::print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int bytes = std::vfprintf(stream, format, args);
    va_end(args);
    if (bytes > 0)
        writtenBytes += bytes;
}

void LogDestFile::writeHeader() {
    if (headerWritten)
        return;
    headerWritten = true;
    print("%s", header.c_str());
}

void LogDestFile::writeLine(int level, const char* srcName, const char* text) {
    if (isLogFile)
        writeHeader();
    if (colour)
        print("\033[%sm", colourOf(level));
    const Time now = Time::now();
    const time_t seconds = static_cast<time_t>(now.toUnix());
    const int millis = static_cast<int>((now - Time::fromUnix(seconds)) / ticksPerMs);
    struct tm when {};
    if (compactLog()) {
        localtime_r(&seconds, &when);
        print("%02d:%02d:%02d.%03d %s: %s\n", when.tm_hour, when.tm_min, when.tm_sec, millis, srcName, text);
    } else {
        gmtime_r(&seconds, &when);
        print("<%d> %04d-%02d-%02dT%02d:%02d:%02d.%03dZ %s %s[%lld]: %s: %s\n", syslogPriority(level),
              when.tm_year + 1900, when.tm_mon + 1, when.tm_mday, when.tm_hour, when.tm_min, when.tm_sec, millis,
              hostName(), programName().c_str(), static_cast<long long>(getpid()), srcName, text);
    }
    if (colour)
        print("\033[0m");
    std::fflush(stream);
    std::clearerr(stream); // a full disk may have room again
}

void LogDestFile::checkSize() {
    if (maxSizeBytes <= 0 || !isLogFile || writtenBytes < maxSizeBytes)
        return;
    ended = true;
    close();
    if (callback)
        callback->logFileEnded();
}

bool LogDestFile::ensureOpen() {
    if (stream)
        return true;
    return isLogFile && !failed && openWithFallback();
}

bool LogDestFile::openWithFallback() {
    failed = true; // also while it opens: what logs meanwhile must not open again
    try {
        openFile(logPath(logDir().value(), logFile().value()));
        failed = false;
    } catch (const Exception& e) {
        std::fprintf(stderr, "Error opening log file: %s\n", logSafeText(e.what()).c_str());
        failed = !openDefault(e.what());
    }
    return !failed;
}

bool LogDestFile::openDefault(const char* firstError) {
    if (logFile().getPriority() <= PriorityDefault && logDir().getPriority() <= PriorityDefault)
        return false;
    try {
        const String path = logPath(logDir().getValueStrAt(PriorityDefault), logFile().getValueStrAt(PriorityDefault));
        std::fprintf(stderr, "Reverting to default log file %s\n", logSafeText(path.c_str()).c_str());
        openFile(path);
    } catch (const Exception& e) {
        std::fprintf(stderr, "Error opening default log file: %s\n", logSafeText(e.what()).c_str());
        return false;
    }
    const std::string text = std::string("Error opening log file: ") + firstError;
    writeLine(LogError, "LogDestFile", logSafeText(text.c_str()).c_str());
    return true;
}

void LogDestFile::openFile(const String& path) {
    mkDirs(path::dirName(path.c_str()).c_str(), /*isPrivate=*/true);
    logDeleteOld(path.c_str(), logKeepDays().value());
    logRotate(path.c_str());
    stream = logCreate(path.c_str());
    openPath = path;
    headerWritten = false;
    writtenBytes = 0;
    colour = isColourTerminal(stream);
}

} // namespace plat
