// RegistrySection against QSettings doing the same work in the same run.
//
// A round is WriteInt + ReadInt + ReadKey on an open section. A registry write
// is durable when it returns, so the QSettings peer syncs after the write of
// each round; the unsynced QSettings case is reported for information. Both
// stores hold the same 100 further values, as a real settings store would.

#include <KORVAutlwin/frame/RegistrySection.h>

#include <QSettings>
#include <QString>
#include <QVariant>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

constexpr int kFillerValues = 100;
constexpr const char* kSectionPath = "SOFTWARE\\Bench\\Settings";

// One temp folder for the run: the registry store and the QSettings file.
// Removed at exit; the name lives in a plain array, which outlasts every destructor.
char gFolder[64] = "/tmp/korva-bench-XXXXXX";

const std::string& Folder()
{
    static const std::string folder = [] {
        const std::string made = ::mkdtemp(gFolder) ? gFolder : "/tmp";
        ::setenv("KORVA_REGISTRY_DIR", made.c_str(), 1);
        korva::RegistryStore::Reset();
        std::atexit([] {
            korva::RegistryStore::Reset();
            std::error_code ignored;
            std::filesystem::remove_all(gFolder, ignored);
        });
        return made;
    }();
    return folder;
}

QString SettingsFile()
{
    return QString::fromStdString(Folder() + "/settings.ini");
}

void FillRegistry()
{
    Folder();
    RegistrySection section(HKEY_CURRENT_USER, kSectionPath, 0x2001F, true);
    for (int i = 0; i < kFillerValues; ++i)
        section.WriteKey(("filler" + std::to_string(i)).c_str(), "some value of a typical length");
    section.WriteKey("name", "the name of the thing");
}

void FillSettings(QSettings& settings)
{
    for (int i = 0; i < kFillerValues; ++i)
        settings.setValue(QStringLiteral("Settings/filler%1").arg(i), QStringLiteral("some value of a typical length"));
    settings.setValue(QStringLiteral("Settings/name"), QStringLiteral("the name of the thing"));
    settings.sync();
}

void Registry_WriteInt_ReadInt_ReadKey(benchmark::State& state)
{
    FillRegistry();
    RegistrySection section(HKEY_CURRENT_USER, kSectionPath, 0x2001F, false);
    int round = 0;
    for (auto _ : state) {
        int number = 0;
        std::string text;
        if (!section.WriteInt("count", ++round) || !section.ReadInt("count", number) || !section.ReadKey("name", text))
            state.SkipWithError("registry round failed");
        benchmark::DoNotOptimize(number);
        benchmark::DoNotOptimize(text);
    }
}

void RoundWithQSettings(benchmark::State& state, bool sync)
{
    QSettings settings(SettingsFile(), QSettings::IniFormat);
    FillSettings(settings);
    const QString count = QStringLiteral("Settings/count");
    const QString name = QStringLiteral("Settings/name");
    int round = 0;
    for (auto _ : state) {
        settings.setValue(count, ++round);
        if (sync) {
            settings.sync();
            if (settings.status() != QSettings::NoError)
                state.SkipWithError("QSettings sync failed");
        }
        int number = settings.value(count).toInt();
        QString text = settings.value(name).toString();
        benchmark::DoNotOptimize(number);
        benchmark::DoNotOptimize(text);
    }
}

void QSettingsSynced_WriteInt_ReadInt_ReadKey(benchmark::State& state)
{
    RoundWithQSettings(state, true);
}

void QSettingsUnsynced_WriteInt_ReadInt_ReadKey(benchmark::State& state)
{
    RoundWithQSettings(state, false);
}

// Opening a section on an existing key and reading one text, as code that
// reads a setting now and then does.
void Registry_Open_ReadKey(benchmark::State& state)
{
    FillRegistry();
    for (auto _ : state) {
        RegistrySection section(HKEY_CURRENT_USER, kSectionPath, 0x20019, false);
        std::string text;
        if (!section.ReadKey("name", text))
            state.SkipWithError("registry read failed");
        benchmark::DoNotOptimize(text);
    }
}

// The same after a commit in between, so that nothing read before may be used:
// the cost of the first open and read after another process has written.
void Registry_Open_ReadKey_AfterCommit(benchmark::State& state)
{
    FillRegistry();
    RegistrySection other(HKEY_CURRENT_USER, "SOFTWARE\\Bench\\Other", 0x2001F, true);
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        other.WriteInt("count", ++round);
        state.ResumeTiming();
        RegistrySection section(HKEY_CURRENT_USER, kSectionPath, 0x20019, false);
        std::string text;
        if (!section.ReadKey("name", text))
            state.SkipWithError("registry read failed");
        benchmark::DoNotOptimize(text);
    }
}

void QSettings_Open_ReadKey(benchmark::State& state)
{
    {
        QSettings settings(SettingsFile(), QSettings::IniFormat);
        FillSettings(settings);
    }
    for (auto _ : state) {
        QSettings settings(SettingsFile(), QSettings::IniFormat);
        QString text = settings.value(QStringLiteral("Settings/name")).toString();
        benchmark::DoNotOptimize(text);
    }
}

} // namespace

BENCHMARK(Registry_WriteInt_ReadInt_ReadKey);
BENCHMARK(QSettingsSynced_WriteInt_ReadInt_ReadKey);
BENCHMARK(QSettingsUnsynced_WriteInt_ReadInt_ReadKey);
BENCHMARK(Registry_Open_ReadKey);
BENCHMARK(Registry_Open_ReadKey_AfterCommit);
BENCHMARK(QSettings_Open_ReadKey);
