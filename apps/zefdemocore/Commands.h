// The commands of the stand-in core, one a line.
#pragma once

#include "plat/Timer.h"
#include "zefdemocore/CoreLink.h"
#include "zefdemocore/CoreModel.h"
#include "zefdemocore/PromptProcess.h"
#include "zefdemocore/StopRequest.h"
#include "zefdemocore/UiProcess.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace democore {

/// Runs command lines in turn; `sleep` and `wait` hold up those behind them while the loop goes on.
class Commands : public StopListener::Callback,
                 private CoreLink::Callback,
                 private PromptProcess::Callback,
                 private plat::Timer::Callback {
public:
    Commands(UiProcess* uiProcess, bool mirrorStatus); ///< borrowed; `mirrorStatus` answers the UI as a core would
    ~Commands() override;

    /// Starts the connection prompt when it is first needed.
    using PromptMaker = std::function<std::unique_ptr<PromptProcess>(PromptProcess::Callback*)>;
    void setPromptMaker(PromptMaker maker) { makePrompt = std::move(maker); }

    void add(const std::string& line); ///< at the end of the queue
    void endOfInput();                 ///< ends the program once the queue is empty
    void stopRequested() override;     ///< from outside: closes the link, whatever waits in the queue
    int exitCode() const { return failed ? 1 : 0; }

private:
    using Words = std::vector<std::string>;
    struct Command;
    static const Command table[];

    // CoreLink::Callback
    void uiMessage(const std::string& name, const std::vector<std::string>& fields) override;
    void linkLost() override;
    // PromptProcess::Callback
    void promptAnswered() override { take("result"); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void answer(const std::string& name, const std::vector<std::string>& fields);
    void take(const std::string& message); // that has come, for `wait`
    void runQueue();
    void run(const std::string& line);
    void fail(const std::string& why);
    void finish();

    // Commands; `rest` is the line behind the command word.
    void help(const std::string& rest);
    void echo(const std::string& rest);
    void addClient(const std::string& rest);
    void addClientResult(const std::string& rest);
    void clipboard(const std::string& rest);
    void cutText(const std::string& rest);
    void cutFile(const std::string& rest);
    void saveCut(const std::string& rest);
    void guest(const std::string& rest);
    void node(const std::string& rest);
    void text(const std::string& rest);
    void removeNode(const std::string& rest);
    void begin(const std::string& rest);
    void end(const std::string& rest);
    void commit(const std::string& rest);
    void event(const std::string& rest);
    void removeEvent(const std::string& rest);
    void connect(const std::string& rest);
    void disconnect(const std::string& rest);
    void coreStatus(const std::string& rest);
    void privacy(const std::string& rest);
    void cloudRefresh(const std::string& rest);
    void desktop(const std::string& rest);
    void features(const std::string& rest);
    void showStatus(const std::string& rest);
    void showOptions(const std::string& rest);
    void serverExe(const std::string& rest);
    void resolve(const std::string& rest);
    void productUri(const std::string& rest);
    void prompt(const std::string& rest);
    void cancelPrompt(const std::string& rest);
    void closePrompt(const std::string& rest);
    void logLevel(const std::string& rest);
    void flood(const std::string& rest);
    void children(const std::string& rest);
    void raw(const std::string& rest);
    void message(const std::string& rest);
    void shell(const std::string& rest);
    void sleep(const std::string& rest);
    void wait(const std::string& rest);
    void closeLink(const std::string& rest);
    void waitExit(const std::string& rest);
    void quit(const std::string& rest);

    UiProcess* ui;
    bool mirror;
    CoreLink link;
    CoreModel model;
    PromptMaker makePrompt;
    std::unique_ptr<PromptProcess> promptProcess; // null until needed
    std::deque<std::string> queue;
    std::vector<std::string> arrived; // messages of the UI that no `wait` has taken
    std::string waitingFor;           // a message name, or empty
    plat::Timer timer;                // of sleep and wait
    bool isSleeping = false;
    bool isRunning = false;
    bool atEnd = false;
    bool failed = false;
};

} // namespace democore
