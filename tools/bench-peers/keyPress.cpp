// Starts a program on an X server whose screen is a file, types into it, and tells what a key takes:
//   keyPress SCREEN_FILE -click X,Y -server PID [-setup COMMAND] [-alt KEY] [-keys COUNT] PROGRAM ARGUMENT...
// COMMAND runs in a shell once the first picture rests; then comes the click, at root coordinates, or Alt and KEY with
// the pointer there; then the keys: "1" and BackSpace in turn, each after the picture has rested. Prints one line, of
// medians over all keys: ms from a key press to the first changed pixel, changes of the picture a key; as means, CPU ms
// a key of the program and of the X server; and the median of the ms that a wait of 11 takes on this machine now: our
// repaint pass of 10, and the one that the loop adds.
#include "watch.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

class Picture {
public:
    explicit Picture(const char* file) {
        const int fd = open(file, O_RDONLY | O_CLOEXEC);
        struct stat status {};
        if (fd < 0 || fstat(fd, &status) != 0)
            exit(2);
        size = static_cast<size_t>(status.st_size);
        screen = mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
        if (screen == MAP_FAILED)
            exit(2);
        last.resize(size);
        memcpy(last.data(), screen, size);
    }

    /// Waits until nothing has changed for a while; the time of the first change, 0 for none, and how many there were.
    /// Changes less than a millisecond apart are one.
    double rest(double quietMs, double noChangeMs, int& changes) {
        const double start = nowMs();
        double first = 0;
        double latest = 0;
        changes = 0;
        for (double now = start; latest == 0 ? now - start < noChangeMs : now - latest < quietMs; now = nowMs()) {
            if (memcmp(last.data(), screen, size) != 0) {
                now = nowMs();
                if (first == 0)
                    first = now;
                if (latest == 0 || now - latest > 1)
                    ++changes;
                latest = now;
                memcpy(last.data(), screen, size);
            }
            pauseMs(0.05);
        }
        return first;
    }

private:
    const void* screen;
    size_t size = 0;
    std::vector<char> last;
};

} // namespace

int main(int argc, char** argv) {
    int at = 1;
    const char* screenFile = argc > at ? argv[at++] : "";
    int x = 0;
    int y = 0;
    int keys = 100;
    pid_t server = 0;
    const char* setup = nullptr;
    const char* mnemonic = nullptr;
    for (; at + 1 < argc && argv[at][0] == '-'; at += 2) {
        if (strcmp(argv[at], "-click") == 0)
            sscanf(argv[at + 1], "%d,%d", &x, &y);
        else if (strcmp(argv[at], "-server") == 0)
            server = atoi(argv[at + 1]);
        else if (strcmp(argv[at], "-setup") == 0)
            setup = argv[at + 1];
        else if (strcmp(argv[at], "-alt") == 0)
            mnemonic = argv[at + 1];
        else
            keys = atoi(argv[at + 1]);
    }
    Display* display = XOpenDisplay(nullptr);
    if (!display || at >= argc) {
        fprintf(stderr, "keyPress: no display or no program\n");
        return 2;
    }
    Picture picture(screenFile);
    pid_t child = -1;
    if (posix_spawn(&child, argv[at], nullptr, nullptr, argv + at, environ) != 0)
        return 2;
    int changes = 0;
    picture.rest(400, 10000, changes);
    if (setup && system(setup) != 0)
        fprintf(stderr, "keyPress: the setup failed\n");
    picture.rest(400, 1000, changes);
    XTestFakeMotionEvent(display, -1, x, y, 0);
    // There is no window manager to give the window the keys.
    Window root = 0;
    Window window = None;
    int place[4];
    unsigned mask = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &window, &place[0], &place[1], &place[2], &place[3],
                  &mask);
    if (window != None)
        XSetInputFocus(display, window, RevertToPointerRoot, CurrentTime);
    if (mnemonic) {
        const KeyCode alt = XKeysymToKeycode(display, XK_Alt_L);
        const KeyCode letter = XKeysymToKeycode(display, XStringToKeysym(mnemonic));
        XTestFakeKeyEvent(display, alt, True, 0);
        XTestFakeKeyEvent(display, letter, True, 0);
        XTestFakeKeyEvent(display, letter, False, 0);
        XTestFakeKeyEvent(display, alt, False, 0);
    } else {
        XTestFakeButtonEvent(display, 1, True, 0);
        XTestFakeButtonEvent(display, 1, False, 0);
    }
    XFlush(display);
    picture.rest(400, 1000, changes);
    std::vector<double> waits;
    std::vector<double> counts;
    std::vector<double> floors;
    double cpu = 0;
    double serverCpu = 0;
    for (int i = 0; i < keys; ++i) {
        const double floorStart = nowMs();
        timeval pass{0, 11000};
        select(0, nullptr, nullptr, nullptr, &pass);
        floors.push_back(nowMs() - floorStart);
        const double cpuBefore = cpuMs(child);
        const double serverBefore = cpuMs(server);
        const KeyCode code = XKeysymToKeycode(display, i % 2 ? XK_BackSpace : XK_1);
        XTestFakeKeyEvent(display, code, True, 0);
        const double pressed = nowMs();
        XFlush(display);
        const double first = picture.rest(40, 500, changes);
        XTestFakeKeyEvent(display, code, False, 0);
        XFlush(display);
        int afterRelease = 0;
        picture.rest(1, 15, afterRelease);
        cpu += cpuMs(child) - cpuBefore;
        serverCpu += cpuMs(server) - serverBefore;
        if (first == 0) {
            fprintf(stderr, "keyPress: a key changed nothing\n");
            kill(child, SIGKILL); // or whoever reads our output waits for it
            return 1;
        }
        waits.push_back(first - pressed);
        counts.push_back(changes + afterRelease);
    }
    printf("%.3f %.0f %.4f %.4f %.3f\n", median(waits), median(counts), cpu / keys, serverCpu / keys, median(floors));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    XCloseDisplay(display);
    return 0;
}
