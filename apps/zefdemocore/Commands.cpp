#include "zefdemocore/Commands.h"

#include "os/AppLoop.h"
#include "plat/Exception.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace democore {
namespace {
constexpr unsigned defaultWaitMs = 5000;

std::vector<std::string> split(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

// The first word of `text`, which keeps what stands behind it.
std::string takeWord(std::string& text) {
    const size_t start = text.find_first_not_of(' ');
    if (start == std::string::npos) {
        text.clear();
        return "";
    }
    const size_t end = text.find(' ', start);
    std::string word = text.substr(start, end == std::string::npos ? end : end - start);
    const size_t next = end == std::string::npos ? end : text.find_first_not_of(' ', end);
    text = next == std::string::npos ? "" : text.substr(next);
    return word;
}

// Parts between " | ".
std::vector<std::string> parts(const std::string& text) {
    std::vector<std::string> all;
    size_t start = 0;
    for (size_t bar = text.find(" | "); bar != std::string::npos; bar = text.find(" | ", start)) {
        all.push_back(text.substr(start, bar - start));
        start = bar + 3;
    }
    all.push_back(text.substr(start));
    return all;
}

uint32_t number(const std::string& text) { return static_cast<uint32_t>(strtoul(text.c_str(), nullptr, 0)); }

// "key=value | key=value".
std::map<std::string, std::string> keyValues(const std::string& text) {
    std::map<std::string, std::string> map;
    for (const std::string& part : parts(text)) {
        const size_t equals = part.find('=');
        if (equals != std::string::npos)
            map[part.substr(0, equals)] = part.substr(equals + 1);
    }
    return map;
}

std::string unhex(const std::string& text) {
    std::string bytes;
    std::string digits;
    for (const char c : text)
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(strtoul(digits.substr(i, 2).c_str(), nullptr, 16));
    return bytes;
}

// Bytes that a line can't hold, as in addresses: "%0a".
std::string unpercent(const std::string& text) {
    const auto isHex = [&](size_t at) {
        return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at]));
    };
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool coded = text[i] == '%' && isHex(i + 1) && isHex(i + 2);
        bytes += coded ? unhex(text.substr(i + 1, 2)) : text.substr(i, 1);
        i += coded ? 2 : 0;
    }
    return bytes;
}
} // namespace

struct Commands::Command {
    const char* name;
    void (Commands::*run)(const std::string& rest);
    const char* usage;
};

const Commands::Command Commands::table[] = {
    {"addclient", &Commands::addClient, "0|1: whether the UI offers to connect out to a viewer"},
    {"addclientresult", &Commands::addClientResult, "[TEXT]: how connecting out ended; with a text it failed"},
    {"begin", &Commands::begin, "open a batch of status changes"},
    {"children", &Commands::children, "N PARENT: N distinct nodes under one parent, in one batch"},
    {"clipboard", &Commands::clipboard, "0|1: whether text is shared with viewers"},
    {"close", &Commands::closeLink, "close the link to the UI"},
    {"cloudrefresh", &Commands::cloudRefresh, "0|1: whether the UI may ask for a refresh of the cloud's state"},
    {"commit", &Commands::commit, "commit the status database"},
    {"connect", &Commands::connect, "USER ADDRESS TYPE [PERMISSIONS]: a user comes; %20 is a blank, and so on"},
    {"corestatus", &Commands::coreStatus, "STATE OPTIONSOFF CANNOTSTOP CLOSESTOPS NOTIFYMS FLAGS"},
    {"cutfile", &Commands::cutFile, "PATH: a viewer copied what is in that file"},
    {"cuttext", &Commands::cutText, "TEXT: a viewer copied it; %0a is a line end"},
    {"desktop", &Commands::desktop, "0|1: the desktop ended or started"},
    {"disconnect", &Commands::disconnect, "USER: a user goes"},
    {"echo", &Commands::echo, "TEXT: print it"},
    {"end", &Commands::end, "close the batch, which commits"},
    {"event", &Commands::event,
     "ID SEVERITY TITLE | description=.. | recovery=.. : something to know; %0a is a line end"},
    {"exited", &Commands::waitExit, "[MS]: wait for the end of the UI and print it"},
    {"features", &Commands::features, "NAME=ae NAME=a NAME= ..: available, enabled"},
    {"flood", &Commands::flood, "N: N writes of one node in one batch"},
    {"guest", &Commands::guest, "SHOWN CHECKED: the item of guest access"},
    {"help", &Commands::help, "this list"},
    {"loglevel", &Commands::logLevel, "LEVEL: ask for log messages"},
    {"message", &Commands::message, "NAME HEX: a message with these bytes as its body"},
    {"node", &Commands::node, "PATH ORDER key=value | key=value: write a node"},
    {"noevent", &Commands::removeEvent, "ID: take an event away"},
    {"privacy", &Commands::privacy, "0|1"},
    {"producturi", &Commands::productUri, "URI"},
    {"prompt", &Commands::prompt,
     "name=.. | type=.. | timeout=S | message=.. | rights=.. | view=1: may somebody connect? %0a is a line end"},
    {"promptcancel", &Commands::cancelPrompt, "take the question back"},
    {"promptclose", &Commands::closePrompt, "close the link to the prompt and print how it ended"},
    {"quit", &Commands::quit, "end this program"},
    {"raw", &Commands::raw, "HEX: bytes onto the wire as they are"},
    {"remove", &Commands::removeNode, "PATH"},
    {"resolve", &Commands::resolve, "ID: hand an event back"},
    {"savecut", &Commands::saveCut, "PATH: write what was copied on the desktop last to a file"},
    {"serverexe", &Commands::serverExe, "PATH"},
    {"shell", &Commands::shell, "COMMAND: run it and wait, with UI_PID and PROMPT_PID set"},
    {"showoptions", &Commands::showOptions, "[SECTION]"},
    {"showstatus", &Commands::showStatus, "open the status dialog"},
    {"sleep", &Commands::sleep, "MS"},
    {"text", &Commands::text, "PATH TEXT: write a node with that text; %0a is a line end"},
    {"wait", &Commands::wait, "MESSAGE [MS]: until the UI, or the prompt, has sent it"},
};

Commands::Commands(UiProcess* uiProcess, bool mirrorStatus)
    : ui(uiProcess), mirror(mirrorStatus), link(ui->takeLink(), this), model(&link), timer(this) {}

Commands::~Commands() = default;

void Commands::add(const std::string& line) {
    queue.push_back(line);
    runQueue();
}

void Commands::endOfInput() {
    atEnd = true;
    runQueue();
}

void Commands::runQueue() {
    if (isRunning)
        return;
    isRunning = true;
    while (!queue.empty() && !isSleeping && waitingFor.empty()) {
        const std::string line = queue.front();
        queue.pop_front();
        run(line);
    }
    isRunning = false;
    if (atEnd && queue.empty() && !isSleeping && waitingFor.empty())
        finish();
}

void Commands::run(const std::string& line) {
    std::string rest = line;
    const std::string word = takeWord(rest);
    if (word.empty() || word[0] == '#')
        return;
    const auto* found =
        std::find_if(std::begin(table), std::end(table), [&](const Command& each) { return word == each.name; });
    if (found == std::end(table)) {
        fail("unknown command: " + word);
        return;
    }
    try {
        (this->*found->run)(rest);
    } catch (const plat::Exception& e) {
        fail(word + ": " + e.what());
    }
}

void Commands::fail(const std::string& why) {
    failed = true;
    printf("error: %s\n", why.c_str());
    fflush(stdout);
}

void Commands::finish() {
    os::AppLoop::exit(exitCode());
    queue.clear();
}

void Commands::answer(const std::string& name, const std::vector<std::string>& fields) {
    if (name == "updateStatus")
        model.sendAll();
    else if (name == "disconnClient")
        model.disconnect(fields.at(0), fields.at(1));
    else if (name == "resolveEvent")
        link.sendText("resolveEvent", fields.at(0)); // nothing that it could do itself
}

void Commands::uiMessage(const std::string& name, const std::vector<std::string>& fields) {
    if (mirror)
        answer(name, fields);
    take(name);
}

void Commands::take(const std::string& name) {
    if (!waitingFor.empty() && name == waitingFor) {
        waitingFor.clear();
        timer.cancel();
        runQueue();
        return;
    }
    arrived.push_back(name);
}

void Commands::linkLost() {
    printf("link lost, ui %s\n", ui->waitForEnd(5000).c_str());
    fflush(stdout);
    if (!waitingFor.empty()) {
        timer.cancel();
        fail("no " + waitingFor + ": the link is gone");
        waitingFor.clear();
    }
    // What stands behind in a script may still look at how the UI ended.
    if (queue.empty() && !isSleeping)
        finish();
    else
        runQueue();
}

void Commands::stopRequested() {
    printf("stop requested\n");
    fflush(stdout);
    link.closeLink();
}

bool Commands::timerExpired(plat::Timer*) {
    if (!waitingFor.empty())
        fail("no " + waitingFor + " came");
    waitingFor.clear();
    isSleeping = false;
    runQueue();
    return false;
}

void Commands::help(const std::string&) {
    for (const Command& each : table)
        printf("%-12s %s\n", each.name, each.usage);
    fflush(stdout);
}

void Commands::echo(const std::string& rest) {
    printf("%s\n", rest.c_str());
    fflush(stdout);
}

void Commands::node(const std::string& rest) {
    std::string left = rest;
    const std::string path = takeWord(left);
    const uint32_t order = number(takeWord(left));
    model.set(path, keyValues(left), order);
}

void Commands::text(const std::string& rest) {
    std::string left = rest;
    const std::string path = takeWord(left);
    model.setText(path, unpercent(left));
}

void Commands::removeNode(const std::string& rest) { model.remove(rest); }
void Commands::begin(const std::string&) { model.begin(); }
void Commands::end(const std::string&) { model.end(); }
void Commands::commit(const std::string&) { model.commit(); }

void Commands::event(const std::string& rest) {
    std::string left = rest;
    const std::string id = takeWord(left);
    const uint32_t severity = number(takeWord(left));
    std::map<std::string, std::string> data = keyValues(left);
    data["title"] = parts(left).front();
    for (auto& [key, value] : data)
        value = unpercent(value);
    model.setEvent(id, severity, data);
}

void Commands::removeEvent(const std::string& rest) { model.removeEvent(rest); }

void Commands::connect(const std::string& rest) {
    const Words words = split(rest);
    if (words.size() != 3 && words.size() != 4) {
        fail("connect USER ADDRESS TYPE [PERMISSIONS]");
        return;
    }
    model.connect(unpercent(words[0]), unpercent(words[1]), words[2], words.size() > 3 ? words[3] : "sv");
}

void Commands::disconnect(const std::string& rest) {
    if (!model.disconnect(unpercent(rest)))
        fail("no such user: " + rest);
}

void Commands::coreStatus(const std::string& rest) {
    std::vector<uint32_t> fields;
    for (const std::string& word : split(rest))
        fields.push_back(number(word));
    link.updateCoreStatus(fields);
}

void Commands::privacy(const std::string& rest) { link.updatePrivacyStatus(number(rest) != 0); }
void Commands::cloudRefresh(const std::string& rest) { link.sendBool("cloudRefreshAllowed", number(rest) != 0); }
void Commands::addClient(const std::string& rest) { link.sendBool("enableAddClient", number(rest) != 0); }

void Commands::addClientResult(const std::string& rest) {
    const std::string text = unpercent(rest).substr(0, 255);
    std::string body(1, rest.empty() ? '\0' : '\1');
    if (!rest.empty())
        body += static_cast<char>(text.size()) + text;
    link.sendBody("addClientResult", body);
}

void Commands::clipboard(const std::string& rest) { link.sendBool("enableClipboard", number(rest) != 0); }
void Commands::cutText(const std::string& rest) { link.sendCutText(unpercent(rest)); }

void Commands::cutFile(const std::string& rest) {
    std::ifstream in(rest, std::ios::binary);
    if (!in)
        fail("cutfile: no file " + rest);
    else
        link.sendCutText({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

void Commands::saveCut(const std::string& rest) {
    std::ofstream out(rest, std::ios::binary);
    if (!(out << link.lastCutText() << std::flush))
        fail("savecut: can't write " + rest);
    else
        echo("saved " + std::to_string(link.lastCutText().size()));
}

void Commands::guest(const std::string& rest) {
    const Words words = split(rest);
    const auto flag = [&](size_t i) { return i < words.size() && words[i] != "0" ? '\1' : '\0'; };
    link.sendBody("GuestLoginUi", std::string{flag(0), flag(1)});
}

void Commands::desktop(const std::string& rest) { link.desktopStarted(number(rest) != 0); }

void Commands::features(const std::string& rest) {
    std::vector<std::pair<std::string, int>> all;
    for (const std::string& word : split(rest)) {
        const size_t equals = word.find('=');
        const std::string bits = equals == std::string::npos ? "" : word.substr(equals + 1);
        const int available = bits.find('a') == std::string::npos ? 0 : 1;
        const int enabled = bits.find('e') == std::string::npos ? 0 : 2;
        all.emplace_back(word.substr(0, equals), available | enabled);
    }
    link.updateFeatures(all);
}

void Commands::showStatus(const std::string&) { link.sendEmpty("showStatusDialog"); }
void Commands::showOptions(const std::string& rest) { link.sendText("showOptions", rest); }
void Commands::serverExe(const std::string& rest) { link.sendText("setServerExe", rest); }
void Commands::resolve(const std::string& rest) { link.sendText("resolveEvent", rest); }
void Commands::productUri(const std::string& rest) { link.sendText("productUri", rest); }
void Commands::logLevel(const std::string& rest) { link.setLogLevel(number(rest)); }

void Commands::prompt(const std::string& rest) {
    if (!promptProcess || !promptProcess->isOpen())
        promptProcess = makePrompt(this);
    auto fields = keyValues(rest);
    for (auto& [name, text] : fields)
        text = unpercent(text);
    promptProcess->start(fields);
}

void Commands::cancelPrompt(const std::string&) {
    if (promptProcess)
        promptProcess->cancel();
}

void Commands::closePrompt(const std::string&) {
    if (!promptProcess) {
        fail("no prompt runs");
        return;
    }
    printf("prompt %s\n", promptProcess->close().c_str());
    fflush(stdout);
    promptProcess.reset();
}

void Commands::flood(const std::string& rest) {
    const uint32_t count = number(rest);
    model.begin();
    for (uint32_t i = 0; i < count; ++i)
        model.setText("Dlg/Signature", "flood " + std::to_string(i));
    model.end();
}

void Commands::children(const std::string& rest) {
    const Words words = split(rest);
    if (words.size() != 2) {
        fail("children N PARENT");
        return;
    }
    model.begin();
    for (uint32_t i = 0; i < number(words[0]); ++i)
        model.setText(words[1] + "/c" + std::to_string(i), std::to_string(i));
    model.end();
}

void Commands::raw(const std::string& rest) { link.sendRaw(unhex(rest)); }

void Commands::message(const std::string& rest) {
    std::string left = rest;
    const std::string name = takeWord(left);
    link.sendBody(name, unhex(left));
}

void Commands::shell(const std::string& rest) {
    setenv("UI_PID", std::to_string(ui->pid()).c_str(), 1);
    setenv("PROMPT_PID", promptProcess ? std::to_string(promptProcess->pid()).c_str() : "", 1);
    const int status = system(rest.c_str()); // NOLINT: the script's own words, in a tool for developers
    if (status != 0)
        fail("shell: ended with " + std::to_string(status));
}

void Commands::sleep(const std::string& rest) {
    isSleeping = true;
    timer.start(number(rest));
}

void Commands::wait(const std::string& rest) {
    const Words words = split(rest);
    if (words.empty()) {
        fail("wait MESSAGE [MS]");
        return;
    }
    const auto found = std::find(arrived.begin(), arrived.end(), words[0]);
    if (found != arrived.end()) {
        arrived.erase(arrived.begin(), found + 1);
        return;
    }
    if (!link.isOpen()) {
        fail("no " + words[0] + ": the link is gone");
        return;
    }
    waitingFor = words[0];
    timer.start(words.size() > 1 ? number(words[1]) : defaultWaitMs);
}

void Commands::closeLink(const std::string&) { link.closeLink(); }

void Commands::waitExit(const std::string& rest) {
    const uint32_t ms = rest.empty() ? defaultWaitMs : number(rest);
    const std::string ending = ui->waitForEnd(static_cast<int>(ms));
    printf("ui %s\n", ending.c_str());
    fflush(stdout);
    if (ending == "still running")
        fail("the UI did not end");
}

void Commands::quit(const std::string&) {
    queue.clear();
    finish();
}

} // namespace democore
