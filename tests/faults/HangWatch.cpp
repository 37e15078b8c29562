// SPDX-License-Identifier: MIT
#include "tests/faults/HangWatch.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

constexpr int TickMsec = 10;
constexpr int ClosingMsec = 3000; // six threads, each of which is waited for
#ifdef __SANITIZE_THREAD__
constexpr int HangMsec = 8000; // everything takes several times as long
#else
constexpr int HangMsec = 2000;
#endif
constexpr int PatienceMsec = ClosingMsec + HangMsec;
constexpr int HangStatus = 3;

struct ThreadState
{
    bool asleep = false;
    long cpuMsec = 0;
};

ThreadState firstThread()
{
    const std::string task = "/proc/self/task/" + std::to_string(getpid()) + "/stat";
    std::ifstream file(task);
    std::string field;
    while (file >> field && field.back() != ')') {
    }
    ThreadState state;
    file >> field;
    state.asleep = field == "S" || field == "D";
    for (int skipped = 0; skipped < 10; ++skipped) {
        file >> field;
    }
    long user = 0;
    long system = 0;
    file >> user >> system;
    state.cpuMsec = (user + system) * 1000 / sysconf(_SC_CLK_TCK);
    return state;
}

} // namespace

HangWatch::HangWatch()
    : m_thread(&HangWatch::watch, this)
{}

HangWatch::~HangWatch()
{
    m_done = true;
    m_thread.join();
}

void HangWatch::proceed(const char* step)
{
    m_step = step;
    ++m_progress;
}

void HangWatch::watch()
{
    unsigned seen = m_progress;
    long sleptMsec = 0;
    long cpuBefore = firstThread().cpuMsec;
    while (!m_done) {
        std::this_thread::sleep_for(std::chrono::milliseconds(TickMsec));
        const ThreadState state = firstThread();
        if (m_progress != seen) {
            seen = m_progress;
            sleptMsec = 0;
            cpuBefore = state.cpuMsec;
            continue;
        }
        sleptMsec += state.asleep ? TickMsec : 0;
        if (sleptMsec + state.cpuMsec - cpuBefore > PatienceMsec) {
            std::printf("COMPLAINT hangs at %s\n", m_step.load());
            std::fflush(stdout);
            std::_Exit(HangStatus);
        }
    }
}
