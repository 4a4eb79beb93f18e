// Runs two commands in turn and compares the user time and the peak memory of their whole processes:
//
//     talibis_compare PAIRS BYTES FIRST [ARGUMENT...] -- SECOND [ARGUMENT...]
//
// prints one line: user time of both (ms), median of the ratios second to first, time from start to end of
// the second (ms), and its peak memory as a multiple of BYTES. The two runs of a pair stand side by side in
// time, so that a machine with other work troubles both alike.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace
{

struct Cost {
    double dUser;     // ms
    double dElapsed;  // ms
    double dPeak;     // bytes
};

double Now()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

[[noreturn]] void Start(char** command)
{
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

// The usage of a process takes in the children that it waited for.
Cost Run(char** command)
{
    const double begin = Now();
    const pid_t child = fork();
    if (child == 0) {
        Start(command);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "talibis_compare: %s failed\n", command[0]);
        std::exit(EXIT_FAILURE);
    }
    const double user =
        static_cast<double>(usage.ru_utime.tv_sec) * 1e3 + static_cast<double>(usage.ru_utime.tv_usec) * 1e-3;
    return {user, Now() - begin, static_cast<double>(usage.ru_maxrss) * 1024.0};
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

struct Comparison {
    std::vector<double> aFirst;
    std::vector<double> aSecond;
    std::vector<double> aRatios;
    std::vector<double> aElapsed;
    double dPeak = 0.0;

    void add(const Cost& first, const Cost& second)
    {
        aFirst.push_back(first.dUser);
        aSecond.push_back(second.dUser);
        aRatios.push_back(second.dUser / first.dUser);
        aElapsed.push_back(second.dElapsed);
        dPeak = std::max(dPeak, second.dPeak);
    }
};

}  // namespace

int main(int argc, char** argv)
{
    char** const end = argv + argc;
    char** const separator = std::find_if(argv, end, [](char* text) { return std::strcmp(text, "--") == 0; });
    const int pairs = argc > 1 ? std::atoi(argv[1]) : 0;
    const double bytes = argc > 2 ? std::atof(argv[2]) : 0.0;
    if (separator - argv < 4 || end - separator < 2 || pairs < 1 || bytes < 1.0) {
        std::fputs("talibis_compare PAIRS BYTES FIRST [ARGUMENT...] -- SECOND [ARGUMENT...]\n", stderr);
        return EXIT_FAILURE;
    }
    *separator = nullptr;
    Comparison comparison;
    for (int i = 0; i < pairs; ++i) {
        const Cost first = Run(argv + 3);
        comparison.add(first, Run(separator + 1));
    }
    std::printf("%10.2f %10.2f %8.2f %10.2f %8.2f\n", Median(comparison.aFirst), Median(comparison.aSecond),
                Median(comparison.aRatios), Median(comparison.aElapsed), comparison.dPeak / bytes);
    return EXIT_SUCCESS;
}
