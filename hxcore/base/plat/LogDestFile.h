// Log messages to a stream, or to a file that is rotated each time it is opened.
#pragma once

#include "plat/ConfigParameter.h"
#include "plat/LogDest.h"
#include "plat/String.h"

#include <cstdint>

namespace plat {

/// Writes log lines to a stream, or to the file that the parameters LogDir and LogFile name.
///
/// Nothing here fails its caller: what goes wrong is told on stderr, and messages stay in memory. The log file is
/// always a fresh one: an older one is renamed, and whatever else stands in its place (a link, a FIFO) is left
/// untouched.
class LogDestFile : public LogDest, private ParameterChangedCallback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The file has reached its size and was closed; the destination takes no more.
        virtual void logFileEnded() {}
    };

    LogDestFile(const char* destName, FILE* stream); ///< onto an open stream, borrowed
    explicit LogDestFile(const char* destName);      ///< onto the log file, off until switched on
    ~LogDestFile() override;

    static LogDestFile& stderrDest(); ///< "stderr"
    static LogDestFile& fileDest();   ///< "file"

    /// Switches the destination "file" on, or closes it and switches it off.
    static void setFileEnabled(bool enabled);

    /// The name that lines carry, instead of the executable's.
    static void setProgramName(const char* name);

    void setEnabled(bool enabled);
    void setHeader(const char* text);                       ///< the first lines of each new file, wrapped at 79 columns
    void setMaxSize(int64_t sizeBytes, Callback* callback); ///< 0 means none; the callback is borrowed and may be null
    void reopenIfMoved();                                   ///< for when someone else renamed or removed the file
    void close();                                           ///< the next message opens a new file

    // LogDest
    void write(int level, const char* srcName, const char* text) override;
    bool isActive() override;

private:
    // ParameterChangedCallback, of LogDir and LogFile
    void parameterChanged(ConfigParameter*, int priority) override;

    void writeHeader();
    void writeLine(int level, const char* srcName, const char* text);
    void print(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void checkSize();
    bool ensureOpen();
    bool openWithFallback();
    bool openDefault(const char* firstError);
    void openFile(const String& path);

    FILE* stream;
    const bool isLogFile; // else the stream is borrowed and stays open
    bool enabled;
    bool failed = false; // both the set and the default file: wait for a change of the parameters
    bool ended = false;
    bool headerWritten = false;
    bool colour = false;
    String header;
    String openPath;
    int64_t maxSizeBytes = 0;
    int64_t writtenBytes = 0;
    Callback* callback = nullptr;
};

} // namespace plat
