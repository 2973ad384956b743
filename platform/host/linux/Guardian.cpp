#include "platform/host/linux/Guardian.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

constexpr char gAllIsWell = 'w';

[[noreturn]] VOID Watch(int Line, const std::function<VOID()>& AtTheEnd)
{
    // What ends the console may be sent to all that belongs to its terminal.
    (void)setsid();
    for (const int Signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        (void)std::signal(Signal, SIG_IGN);
    }
    char Word = 0;
    ssize_t Count;
    do {
        Count = read(Line, &Word, 1); // nothing when the other end is gone
    } while (Count < 0 && errno == EINTR);
    if (Count != 1 || Word != gAllIsWell) {
        AtTheEnd();
    }
    _exit(0);
}

} // namespace

bool GUARDIAN::Start(const std::function<VOID()>& AtTheEnd)
{
    int Ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, Ends) != 0) {
        return false;
    }
    mChild = fork();
    if (mChild == 0) {
        (void)close(Ends[1]);
        Watch(Ends[0], AtTheEnd);
    }
    (void)close(Ends[0]);
    mLine = Ends[1];
    if (mChild < 0) {
        (void)close(mLine);
    }
    return mChild > 0;
}

VOID GUARDIAN::Dismiss()
{
    if (mChild <= 0) {
        return;
    }
    (void)send(mLine, &gAllIsWell, 1, MSG_NOSIGNAL); // one that is gone already needs no word
    (void)close(mLine);
    (void)waitpid(mChild, nullptr, 0);
    mChild = -1;
}
