// Another program that has copied something.
#pragma once

#include "XTest.h"

#include <atomic>
#include <thread>

#include <poll.h>

namespace txtest {

/// Another client that owns a selection and answers, well or badly, on a thread and a connection of its own.
class Owner {
public:
    using Answer = std::function<void(Owner&, const XSelectionRequestEvent&)>;

    explicit Owner(Answer answer_, const char* selection = "CLIPBOARD") : answer(std::move(answer_)) {
        window = client.makeWindow();
        XSetSelectionOwner(client.display, client.atom(selection), window, tx::currentTime);
        client.sync();
        thread = std::thread([this] { serve(); });
    }
    ~Owner() {
        stopping = true;
        thread.join();
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    /// The SelectionNotify; property 0 refuses.
    void notify(const XSelectionRequestEvent& request, Atom property) {
        XEvent event{};
        event.xselection.type = SelectionNotify;
        event.xselection.requestor = request.requestor;
        event.xselection.selection = request.selection;
        event.xselection.target = request.target;
        event.xselection.property = property;
        event.xselection.time = request.time;
        client.send(request.requestor, event);
    }
    void write(const XSelectionRequestEvent& request, Atom type, int format, const void* data, int count) {
        XChangeProperty(client.display, request.requestor, request.property, type, format, PropModeReplace,
                        static_cast<const unsigned char*>(data), count);
    }
    void giveText(const XSelectionRequestEvent& request, Atom type, const std::string& text) {
        write(request, type, 8, text.data(), static_cast<int>(text.size()));
        notify(request, request.property);
    }

    Client client;
    Window window;
    std::atomic<int> requests{0};

private:
    void serve() {
        while (!stopping) {
            while (XPending(client.display)) {
                XEvent event;
                XNextEvent(client.display, &event);
                if (event.type != SelectionRequest)
                    continue;
                requests++;
                answer(*this, event.xselectionrequest);
            }
            pollfd fd{ConnectionNumber(client.display), POLLIN, 0};
            poll(&fd, 1, 10);
        }
    }

    Answer answer;
    std::atomic<bool> stopping{false};
    std::thread thread;
};

} // namespace txtest
