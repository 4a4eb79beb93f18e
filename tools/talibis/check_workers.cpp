#include "tools/talibis/check_workers.h"

#include "tools/talibis/exit_status.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

// Signals --------------------------------------------------------------------------------------------------

constexpr std::array<int, 4> ENDING_SIGNALS{SIGINT, SIGTERM, SIGHUP, SIGPIPE};

volatile std::sig_atomic_t giSignal = 0;   // set by the handler, for the life of the process
std::array<int, 2> gaiSignalPipe{-1, -1};  // wakes the wait for the children
std::array<struct sigaction, ENDING_SIGNALS.size()> gaFormerActions;

void OnSignal(int number)
{
    const int error = errno;
    giSignal = number;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(gaiSignalPipe[1], &byte, 1);
    errno = error;
}

// Bytes through pipes --------------------------------------------------------------------------------------

bool WriteAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

[[noreturn]] void RunChild(int fd, const CheckFile& file, bool places)
{
    SignalCatcher::enterChild();
    int status = EXIT_UNUSABLE;
    try {
        status = WriteAll(fd, Pack(ReadModelFile(file, places))) ? EXIT_CLEAN : EXIT_UNUSABLE;
    } catch (const std::exception&) {
        // The parent tells that there is no result.
    }
    _exit(status);
}

std::string NoProcess(const char* what)
{
    return std::string("No ") + what + ": " + std::strerror(errno);
}

// The pool -------------------------------------------------------------------------------------------------

// A file that is being read, or has been and waits for those before it.
struct Work {
    pid_t iChild = -1;
    int iPipe = -1;  // open while the child lives
    std::string bytes;
    std::string failure;  // why there is no result

    bool isDone() const { return iPipe < 0; }
};

class Pool
{
  public:
    Pool(const ReadPlan& plan, const ReadEvents& events) : mPlan(plan), mEvents(events) {}
    ~Pool() { endChildren(); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    void run();

  private:
    bool mayStart() const;
    void start();
    void wait();
    void readFrom(Work& work);
    void finish(Work& work);
    bool handOver();
    void handOverRest();
    FileReport reportOf(const CheckFile& file, const Work& work) const;
    void endChildren();

    // A slow file must not let the results of those behind it pile up.
    static constexpr std::size_t WAITING_PER_JOB = 16;
    static constexpr std::size_t WAITING_BYTES = std::size_t{64} << 20U;

    const ReadPlan& mPlan;
    const ReadEvents& mEvents;
    std::map<std::size_t, Work> mWorks;  // by index of the file
    std::size_t mNext = 0;               // file to start
    std::size_t mDone = 0;               // file to hand over
    std::size_t mRunning = 0;
    std::size_t mWaitingBytes = 0;
};

void Pool::run()
{
    while (mDone < mPlan.files.size()) {
        while (mayStart()) {
            start();
        }
        wait();
        if (SignalCatcher::caught() != 0) {
            endChildren();
            handOverRest();
            return;
        }
        if (!handOver()) {
            return;
        }
    }
}

bool Pool::mayStart() const
{
    if (mNext == mPlan.files.size() || mRunning == mPlan.jobs) {
        return false;
    }
    return mNext == mDone || (mNext - mDone < WAITING_PER_JOB * mPlan.jobs && mWaitingBytes < WAITING_BYTES);
}

void Pool::start()
{
    const CheckFile& file = mPlan.files[mNext];
    Work& work = mWorks[mNext++];
    std::array<int, 2> ends;
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        work.failure = NoProcess("pipe to the reading process");
        return;
    }
    work.iChild = fork();
    if (work.iChild == 0) {
        RunChild(ends[1], file, mPlan.places);
    }
    if (work.iChild < 0) {
        work.failure = NoProcess("process to read the file");
        close(ends[0]);
    } else {
        work.iPipe = ends[0];
        ++mRunning;
    }
    close(ends[1]);
}

// Until a child has something to tell, a signal comes, or a tenth of a second is over.
void Pool::wait()
{
    static constexpr int TICK = 100;
    std::vector<pollfd> polls{{SignalCatcher::descriptor(), POLLIN, 0}};
    std::vector<Work*> works{nullptr};
    for (auto& [index, work] : mWorks) {
        if (!work.isDone()) {
            polls.push_back({work.iPipe, POLLIN, 0});
            works.push_back(&work);
        }
    }
    if (polls.size() > 1 && poll(polls.data(), polls.size(), TICK) > 0) {
        for (std::size_t i = 1; i < polls.size(); ++i) {
            if (polls[i].revents != 0) {
                readFrom(*works[i]);
            }
        }
    }
    mEvents.tick(mDone);
}

void Pool::readFrom(Work& work)
{
    std::array<char, 65536> block;
    const ssize_t got = read(work.iPipe, block.data(), block.size());
    if (got > 0) {
        work.bytes.append(block.data(), static_cast<std::size_t>(got));
        mWaitingBytes += static_cast<std::size_t>(got);
    } else if (got == 0 || errno != EINTR) {
        finish(work);
    }
}

void Pool::finish(Work& work)
{
    close(std::exchange(work.iPipe, -1));
    --mRunning;
    int status = 0;
    while (waitpid(work.iChild, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        work.failure = std::string("The reading process ended: ") + strsignal(WTERMSIG(status));
    }
}

FileReport Pool::reportOf(const CheckFile& file, const Work& work) const
{
    FileReport report{file.shown, std::string(NameOfType(file.type)), false, {}};
    const std::string& failure = work.failure;
    if (failure.empty() && Unpack(work.bytes, report)) {
        return report;
    }
    return FailureReport(report.path, report.type,
                         failure.empty() ? "The reading process gave no result." : failure);
}

bool Pool::handOver()
{
    for (auto first = mWorks.begin();
         first != mWorks.end() && first->second.isDone() && first->first == mDone;
         first = mWorks.erase(first), ++mDone) {
        mWaitingBytes -= first->second.bytes.size();
        if (!mEvents.report(reportOf(mPlan.files[mDone], first->second))) {
            return false;
        }
    }
    return true;
}

void Pool::handOverRest()
{
    for (const auto& [index, work] : mWorks) {
        if (!mEvents.report(reportOf(mPlan.files[index], work))) {
            return;
        }
    }
    mWorks.clear();
}

// Work that is not done is forgotten.
void Pool::endChildren()
{
    for (auto& [index, work] : mWorks) {
        if (!work.isDone()) {
            kill(work.iChild, SIGKILL);
            finish(work);
            work.iChild = -1;
        }
    }
    std::erase_if(mWorks, [](const auto& entry) { return entry.second.iChild < 0; });
}

}  // namespace

SignalCatcher::SignalCatcher()
{
    if (pipe2(gaiSignalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        gaiSignalPipe = {-1, -1};
    }
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;  // output that is being written is not torn; who waits polls the descriptor
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < ENDING_SIGNALS.size(); ++i) {
        sigaction(ENDING_SIGNALS[i], nullptr, &gaFormerActions[i]);
        // A signal that the caller has turned off stays off, as under nohup.
        if (gaFormerActions[i].sa_handler != SIG_IGN) {
            sigaction(ENDING_SIGNALS[i], &action, nullptr);
        }
    }
}

SignalCatcher::~SignalCatcher()
{
    for (std::size_t i = 0; i < ENDING_SIGNALS.size(); ++i) {
        sigaction(ENDING_SIGNALS[i], &gaFormerActions[i], nullptr);
    }
    for (int& end : gaiSignalPipe) {
        close(std::exchange(end, -1));
    }
}

int SignalCatcher::caught()
{
    return giSignal;
}

int SignalCatcher::descriptor()
{
    return gaiSignalPipe[0];
}

void SignalCatcher::enterChild()
{
    struct sigaction action = {};
    sigemptyset(&action.sa_mask);
    for (const int number : ENDING_SIGNALS) {
        action.sa_handler = number == SIGPIPE ? SIG_DFL : SIG_IGN;
        sigaction(number, &action, nullptr);
    }
}

int ReadFiles(const ReadPlan& plan, const ReadEvents& events)
{
    Pool(plan, events).run();
    return SignalCatcher::caught();
}
