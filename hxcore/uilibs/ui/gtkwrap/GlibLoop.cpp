#include "ui/gtkwrap/GlibLoop.h"

#include "io/FdHandler.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "ui/gtkwrap/ctypes.h"

namespace gtkwrap {
namespace {
plat::LogSrc log("GlibLoop");

const Fn<c::IoChannel*(int)> ioChannelUnixNew{Library::Glib, "g_io_channel_unix_new"};
const Fn<void(c::IoChannel*)> ioChannelUnref{Library::Glib, "g_io_channel_unref"};
const Fn<unsigned(c::IoChannel*, int, c::IoFunc, c::Pointer)> ioAddWatch{Library::Glib, "g_io_add_watch"};
const Fn<unsigned(unsigned, c::SourceFunc, c::Pointer)> timeoutAdd{Library::Glib, "g_timeout_add"};
const Fn<c::Bool(unsigned)> sourceRemove{Library::Glib, "g_source_remove"};
const Fn<void()> gtkMain{Library::Gtk, "gtk_main"};
const Fn<void()> gtkMainQuit{Library::Gtk, "gtk_main_quit"};
} // namespace

GlibFdManager::GlibFdManager() : FdManager(/*nested=*/false) { timers.setObserver(this); }

GlibFdManager::~GlibFdManager() {
    dismissHandlers();
    timers.setObserver(nullptr);
    if (timeoutSource)
        sourceRemove(timeoutSource);
}

bool GlibFdManager::setInterest(io::FdHandler* handler, bool read, bool write, bool except, bool accept,
                                bool connectInterest) {
    const bool wantRead = read || accept || except;
    if (!wantRead)
        loseRead(handler);
    if (!write)
        loseWrite(handler);
    watch(handler, (wantRead ? c::ioIn | c::ioHangUp : 0) | (write ? c::ioOut : 0));
    return !connectInterest;
}

void GlibFdManager::watch(io::FdHandler* handler, int conditions) {
    const auto found = watches.find(handler);
    if (found != watches.end()) {
        if (found->second.conditions == conditions)
            return;
        sourceRemove(found->second.source);
        watches.erase(found);
    }
    if (!conditions || handler->getFd() < 0)
        return;
    Watch& entry = watches[handler] = Watch{this, handler, conditions, 0};
    c::IoChannel* channel = ioChannelUnixNew(handler->getFd());
    entry.source = ioAddWatch(channel, conditions, reinterpret_cast<c::IoFunc>(&gioFunc), static_cast<void*>(&entry));
    ioChannelUnref(channel); // the source keeps it
}

int GlibFdManager::gioFunc(void*, int condition, void* data) {
    // Copied: the round may end the watch, and with it what `data` points at.
    const Watch watch = *static_cast<Watch*>(data);
    // A hang-up without input is read as well: the reader finds the end of its stream.
    if (watch.conditions & c::ioIn && condition & ~c::ioOut)
        watch.manager->readReady.add(watch.handler);
    if (watch.conditions & c::ioOut && condition & ~c::ioIn)
        watch.manager->writeReady.add(watch.handler);
    watch.manager->round();
    return 1; // the source stays; if it was removed meanwhile, glib knows
}

int GlibFdManager::timeoutFunc(void* data) {
    auto* manager = static_cast<GlibFdManager*>(data);
    manager->timeoutSource = 0;
    manager->round();
    return 0;
}

void GlibFdManager::round() {
    try {
        dispatch();
    } catch (const plat::Exception& failure) {
        log.error("gioFunc: %s", failure.what());
        if (!readReady.isEmpty() || !writeReady.isEmpty())
            kick();
    }
    // It may have fired a little early by the clock of the timers, which then said nothing.
    if (!timeoutSource)
        nextTimerChanged(timers.timeUntilNext());
}

void GlibFdManager::nextTimerChanged(int timeUntilNextMs) {
    if (timeoutSource)
        sourceRemove(timeoutSource);
    timeoutSource = 0;
    if (timeUntilNextMs >= 0)
        timeoutSource = timeoutAdd(static_cast<unsigned>(timeUntilNextMs), &timeoutFunc, static_cast<void*>(this));
}

void GlibFdManager::forget(io::FdHandler* handler) { watch(handler, /*conditions=*/0); }

bool GlibLoop::available() {
    return allAvailable(ioChannelUnixNew, ioChannelUnref, ioAddWatch, timeoutAdd, sourceRemove, gtkMain, gtkMainQuit);
}

int GlibLoop::run(os::AppLoop& loop) {
    stopping = false;
    manager.kick(); // for what was marked or became due before
    inMain = true;
    gtkMain();
    inMain = false;
    return loop.exitCode();
}

void GlibLoop::stop() {
    if (inMain && !stopping)
        gtkMainQuit();
    stopping = true;
}

} // namespace gtkwrap
