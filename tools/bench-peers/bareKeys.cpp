// The least that a key can cost with a repaint pass: a program of nothing but Xlib that waits 11 ms after a key press,
// then has the server copy 10 x 20 pixels from shared memory.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <algorithm>
#include <cstdio>
#include <sys/ipc.h>
#include <sys/select.h>
#include <sys/shm.h>

namespace {

constexpr int width = 900;
constexpr int height = 560;

XImage* sharedImage(Display* display, XShmSegmentInfo* segment) {
    const int screen = DefaultScreen(display);
    XImage* image =
        XShmCreateImage(display, DefaultVisual(display, screen), static_cast<unsigned>(DefaultDepth(display, screen)),
                        ZPixmap, nullptr, segment, width, height);
    if (!image)
        return nullptr;
    const auto bytes = static_cast<size_t>(image->bytes_per_line) * height;
    segment->shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    segment->shmaddr = static_cast<char*>(shmat(segment->shmid, nullptr, 0));
    shmctl(segment->shmid, IPC_RMID, nullptr);
    if (segment->shmaddr == reinterpret_cast<char*>(-1))
        return nullptr;
    image->data = segment->shmaddr;
    XShmAttach(display, segment);
    return image;
}

void mark(XImage* image, bool on) {
    for (int y = 30; y < 50; ++y)
        std::fill_n(image->data + y * image->bytes_per_line + 100 * 4, 10 * 4, on ? '\0' : '\xff');
}

} // namespace

int main() {
    Display* display = XOpenDisplay(nullptr);
    if (!display)
        return 2;
    XShmSegmentInfo segment{};
    XImage* image = sharedImage(display, &segment);
    if (!image) {
        std::fprintf(stderr, "bareKeys: no shared memory\n");
        return 2;
    }
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, width, height, 0, 0, 0xffffff);
    XSelectInput(display, window, KeyPressMask | KeyReleaseMask);
    XMapWindow(display, window);
    GC gc = XCreateGC(display, window, 0, nullptr);
    const int fd = ConnectionNumber(display);
    bool on = false;
    for (bool waiting = false;;) {
        while (XPending(display)) {
            XEvent event;
            XNextEvent(display, &event);
            char text[32];
            KeySym keysym = NoSymbol;
            if (event.type != KeyPress || !XLookupString(&event.xkey, text, sizeof(text), &keysym, nullptr))
                continue;
            on = !on;
            waiting = true;
        }
        fd_set ready;
        FD_ZERO(&ready);
        FD_SET(fd, &ready);
        timeval pass{0, 11000};
        if (select(fd + 1, &ready, nullptr, nullptr, waiting ? &pass : nullptr) != 0)
            continue;
        waiting = false;
        mark(image, on);
        XShmPutImage(display, window, gc, image, 100, 30, 100, 30, 10, 20, False);
    }
}
