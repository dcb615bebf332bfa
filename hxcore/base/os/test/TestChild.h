// The test program as a child that says how it finds itself.
#pragma once

#include "os/ProcessMonitor.h"

#include <map>
#include <string>
#include <vector>

namespace os {

/// A child's road: "-tellfacts <file> ..." writes how things are into the file. See tellFacts for the names.
extern const char* const tellFactsWord;

using Facts = std::map<std::string, std::string>;

Facts readFacts(const std::string& file); ///< empty if there is none
std::string readText(const std::string& file);
std::string openDescriptorNumbers(); ///< "0 1 2"

/// Hears of the ends of children.
class Ends : public ProcessMonitor::Callback {
public:
    ~Ends() override { ProcessMonitor::instance().detachAll(this); }
    void processEnded(pid_t pid, int waitStatus) override { statuses[pid] = waitStatus; }

    int waitFor(pid_t pid); ///< runs the current loop, 10 s at most; gives the wait status, or -2 if it never came

    std::map<pid_t, int> statuses;
};

} // namespace os
