// EventLog::WriteEntry into a running systemd-journald, in one run with its
// floor: sd_journal_send called directly with the same fields. Time is by the
// wall clock and includes waiting for journald when its queue is full; CPU is
// the writing thread's own cost, which is where the two paths differ.
// Also the processor monitor's cost of one sample of /proc/stat.
//
// journald runs in a sandbox of the run's own (a private mount namespace over a
// temporary folder): needs root. Without it the journald rows are skipped.

#include "JournalSandbox.h"

#include <KORVAutlwin/operations/EventLog.h>
#include <KORVAutlwin/operations/TsSid.h>
#include <KORVAutlwin/platform/ProcessorLoad.h>

#include <benchmark/benchmark.h>
#include <systemd/sd-journal.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

const char* const kSource = "korva-bench";
const std::vector<std::string> kStrings = {"sampleservice", "Job 4711 finished: 12345 rows written"};
constexpr unsigned long kEventId = 1003;

// The journald of the whole run, started at the first row that needs it.
class RunJournal
{
public:
    static RunJournal& Get()
    {
        static RunJournal journal;
        return journal;
    }

    const std::string& Unavailable() const { return mWhy; }

    ~RunJournal()
    {
        mSandbox.reset();
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
    }

private:
    RunJournal()
    {
        mWhy = JournalSandbox::Unavailable();
        if (!mWhy.empty())
            return;
        mFolder = (std::filesystem::temp_directory_path() / "korva-bench-XXXXXX").string();
        if (!mkdtemp(mFolder.data())) {
            mWhy = "no temporary folder";
            return;
        }
        mSandbox = std::make_unique<JournalSandbox>(mFolder, false);
        if (!mSandbox->Start())
            mWhy = "systemd-journald did not start";
    }

    std::string mWhy;
    std::string mFolder;
    std::unique_ptr<JournalSandbox> mSandbox;
};

bool Ready(benchmark::State& state)
{
    if (RunJournal::Get().Unavailable().empty())
        return true;
    state.SkipWithError(RunJournal::Get().Unavailable().c_str());
    return false;
}

void BM_WriteEntry(benchmark::State& state)
{
    if (!Ready(state))
        return;
    EventLog log(kSource);
    for (auto _ : state)
        log.WriteEntry(kStrings, kEventId, EventLog::eWarning, 2);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteEntry)->UseRealTime();

// The same fields, formatted by the library's own varargs call.
void BM_SdJournalSendDirect(benchmark::State& state)
{
    if (!Ready(state))
        return;
    const std::string user = TsSid().ToString();
    const char* first = kStrings[0].c_str();
    const char* second = kStrings[1].c_str();
    for (auto _ : state) {
        sd_journal_send("SYSLOG_IDENTIFIER=%s", kSource, "EVENT_USER=%s", user.c_str(), "MESSAGE=%s %s", first,
                        second, "PRIORITY=%i", 4, "EVENT_ID=%lu", kEventId, "EVENT_TYPE=%u", 2u, "EVENT_CATEGORY=%u",
                        2u, "EVENT_STRING_1=%s", first, "EVENT_STRING_2=%s", second, nullptr);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SdJournalSendDirect)->UseRealTime();

// As the service host writes: an EventLog of its own for each entry, which
// looks the user up again.
void BM_WriteEntryOwnEventLog(benchmark::State& state)
{
    if (!Ready(state))
        return;
    for (auto _ : state)
        EventLog(kSource).WriteEntry(kStrings, kEventId, EventLog::eWarning, 2);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteEntryOwnEventLog)->UseRealTime();

// What the processor monitor does once a second: read /proc/stat and work out the load.
void BM_ProcessorLoadSample(benchmark::State& state)
{
    korva::ProcessorLoad load;
    load.Collect();
    long percent = 0;
    for (auto _ : state) {
        load.Collect();
        benchmark::DoNotOptimize(load.GetPercent(percent));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ProcessorLoadSample);

} // namespace
