#include "os/SignalHandler.h"

#include "io/FdSelectManager.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <string>

namespace os {
namespace {

class Listener : public SignalHandler::Callback {
public:
    Listener(std::string& heard_, char letter_) : heard(heard_), letter(letter_) {}
    void signalled(int signal) override {
        heard += letter + std::to_string(signal) + " ";
        if (then)
            then();
    }
    std::function<void()> then;

private:
    std::string& heard;
    char letter;
};

/// In a process of its own, for signals are the whole process's.
class Scene {
public:
    std::string afterRaising(int signal) {
        heard.clear();
        raise(signal);
        EXPECT_EQ(heard, "") << "only on the loop";
        loop.poll(0);
        return heard;
    }
    io::FdSelectManager loop{/*nested=*/true};
    std::unique_ptr<SignalHandler> handler = std::make_unique<SignalHandler>();
    std::string heard;
    Listener a{heard, 'a'}, b{heard, 'b'}, c{heard, 'c'};
};

const std::string usr1 = std::to_string(SIGUSR1);

TEST(SignalHandler, TellsAllInTheirOrderAndLogsTheName) {
    plat::inChild([] {
        Scene scene;
        plat::CapturedLog log;
        for (Listener* each : {&scene.b, &scene.a, &scene.c})
            scene.handler->add(SIGUSR1, each);
        scene.handler->add(SIGTERM, &scene.c);
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "b" + usr1 + " a" + usr1 + " c" + usr1 + " ");
        EXPECT_TRUE(log.has("10 SignalHandler: Got signal SIGUSR1"));
        raise(SIGUSR1);
        raise(SIGTERM);
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "b" + usr1 + " a" + usr1 + " c" + usr1 + " c15 ") << "repeated: once";
        EXPECT_TRUE(log.has("10 SignalHandler: Got signal SIGTERM"));
    });
}

TEST(SignalHandler, ManySignalsLoseNone) {
    plat::inChild([] {
        Scene scene;
        scene.handler->add(SIGUSR1, &scene.a);
        scene.handler->add(SIGUSR2, &scene.b);
        for (int i = 0; i < 100000; ++i) // more than the pipe holds
            raise(SIGUSR1);
        raise(SIGUSR2);
        scene.loop.poll(0);
        EXPECT_EQ(scene.heard, "a" + usr1 + " b" + std::to_string(SIGUSR2) + " ");
    });
}

TEST(SignalHandler, CallbacksComeAndGoWithinACall) {
    plat::inChild([] {
        Scene scene;
        for (Listener* each : {&scene.a, &scene.b})
            scene.handler->add(SIGUSR1, each);
        scene.a.then = [&scene] {
            scene.handler->remove(SIGUSR1, &scene.a);
            scene.handler->remove(SIGUSR1, &scene.b);
            scene.handler->remove(SIGUSR1, &scene.b);
            scene.handler->add(SIGUSR1, &scene.c);
        };
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "a" + usr1 + " ");
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "c" + usr1 + " ");
        scene.c.then = [&scene] { scene.handler->remove(SIGUSR1, &scene.c); };
        scene.handler->add(SIGUSR1, &scene.b);
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "c" + usr1 + " b" + usr1 + " ");

        scene.handler->add(SIGUSR1, &scene.a);
        scene.b.then = [&scene] { scene.handler.reset(); };
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "b" + usr1 + " ") << "the end of it all";
        EXPECT_EQ(SignalHandler::instance(), nullptr);
    });
}

TEST(SignalHandler, GivesSignalsBack) {
    plat::inChild([] {
        Scene scene;
        signal(SIGUSR1, SIG_IGN);
        signal(SIGUSR2, SIG_IGN);
        scene.handler->add(SIGUSR1, &scene.a);
        scene.handler->add(SIGUSR2, &scene.a);
        raise(SIGUSR1);
        scene.handler->remove(SIGUSR1, &scene.a);
        scene.loop.poll(0);
        EXPECT_EQ(scene.afterRaising(SIGUSR1), "") << "pending ones too";
        scene.handler.reset();
        raise(SIGUSR2); // ignored again
        SignalHandler another;
        EXPECT_THROW(another.add(SIGKILL, &scene.a), plat::SystemException);
        another.remove(SIGKILL, &scene.a);
    });
}

TEST(SignalHandlerDeathTest, ThereIsOneAndItLeavesChildrenToTheMonitor) {
    io::FdSelectManager loop(/*nested=*/true);
    const SignalHandler only;
    EXPECT_DEATH(SignalHandler another, "!inst");
    EXPECT_DEATH(SignalHandler::instance()->add(SIGCHLD, nullptr), "signal != SIGCHLD");
}

TEST(SignalName, IsThatOfTheSystem) {
    const struct {
        int signal;
        const char* name;
    } cases[] = {{SIGHUP, "SIGHUP"}, {SIGKILL, "SIGKILL"}, {SIGCHLD, "SIGCHLD"},         {SIGSYS, "SIGSYS"},
                 {0, "signal 0"},    {-1, "signal -1"},    {SIGRTMIN + 3, "SIGRTMIN+3"}, {999, "signal 999"}};
    for (const auto& each : cases)
        EXPECT_STREQ(signalName(each.signal).c_str(), each.name);
}

} // namespace
} // namespace os
