#include "RIO/CORE/view_guard.h"
#include "mem.h"
#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/mman.h>

namespace {

// Read by the handler, so every field can be read at any time. `begin` is 0 where nothing is mapped.
struct guarded_view {
    std::atomic<bool> taken;
    std::atomic<uintptr_t> begin, end;
    std::atomic<uintptr_t> lost;        // first page that was replaced; `end` while none was
};

constexpr int MOST_VIEWS = 64;
constexpr uintptr_t PAGE = 4096;

guarded_view views[MOST_VIEWS];
struct sigaction handler_before;

// Zeros from the page of `address` to the end of the view. 0 when that is not possible.
int replace_rest(guarded_view &view, uintptr_t address)
{
    const uintptr_t page = address & ~(PAGE - 1), end = view.end;
    if (mmap((void *)page, end - page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED)
        return 0;
    if (page < view.lost)
        view.lost = page;
    return 1;
}

void hand_on(int signal, siginfo_t *info, void *context)
{
    if (handler_before.sa_flags & SA_SIGINFO)
        handler_before.sa_sigaction(signal, info, context);
    else if (handler_before.sa_handler != SIG_DFL && handler_before.sa_handler != SIG_IGN)
        handler_before.sa_handler(signal);
    else
        sigaction(SIGBUS, &handler_before, nullptr);    // the access is made again, and ends the program
}

void on_lost_page(int signal, siginfo_t *info, void *context)
{
    const int error = errno;
    const uintptr_t address = uintptr_t(info->si_addr);
    for (guarded_view &view : views) {
        const uintptr_t begin = view.begin;
        if (begin && address >= begin && address < view.end && replace_rest(view, address)) {
            errno = error;
            return;
        }
    }
    hand_on(signal, info, context);
}

bool set_handler()
{
    struct sigaction action = {};
    action.sa_sigaction = on_lost_page;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    return sigaction(SIGBUS, &action, &handler_before) == 0;
}

void unmap(guarded_view &view)
{
    const uintptr_t begin = view.begin.exchange(0);
    if (begin)
        munmap((void *)begin, view.end - begin);
}

} // namespace

int guard_take()
{
    static const bool handled = set_handler();
    for (int place = 0; handled && place < MOST_VIEWS; place++)
        if (!views[place].taken.exchange(true))
            return place;
    return -1;
}

void guard_release(int place)
{
    unmap(views[place]);
    views[place].taken = false;
}

const uint8_t *guard_map(int place, int fd, int64_t offset, int64_t bytes)
{
    guarded_view &view = views[place];
    unmap(view);
    if (bytes <= 0 || mem_must_fail())
        return nullptr;
    void *pages = mmap(nullptr, size_t(bytes), PROT_READ, MAP_SHARED, fd, offset);
    if (pages == MAP_FAILED)
        return nullptr;
    view.end = view.lost = uintptr_t(pages) + uintptr_t(bytes);
    view.begin = uintptr_t(pages);
    return (const uint8_t *)pages;
}

int64_t guard_whole(int place)
{
    const guarded_view &view = views[place];
    return int64_t(view.lost - view.begin);
}
