// Settings files of 10,000 keys, read and written through XMLSection and
// IniFileSection, each beside QSettings doing the same work on an INI file in
// the same run. Shapes: 100 sections of 100 keys (a settings file) and one
// section of 10,000 keys (the worst case for a section's own lookups).
//
// Load: construct, then read every key. Save: start from no file, write every
// key, then write the file to the disk (Flush; QSettings::sync). QSettings
// keeps parsed files in a process-wide cache that it reuses while a file's
// time stamp is unchanged, so its file is touched before every load to make
// it read the file as the others do.

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLSection.h>

#include <QSettings>
#include <QString>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

struct Shape
{
    std::vector<std::string> sections, keys;
    std::vector<std::vector<std::string>> values;
    std::vector<QString> qSections, qKeys;
    std::vector<std::vector<QString>> qValues;

    Shape(int sectionCount, int keyCount)
    {
        for (int s = 0; s < sectionCount; ++s) {
            sections.push_back("Section" + std::to_string(s));
            qSections.push_back(QString::fromStdString(sections.back()));
            values.emplace_back();
            qValues.emplace_back();
            for (int k = 0; k < keyCount; ++k) {
                values.back().push_back("Value number " + std::to_string(s * keyCount + k));
                qValues.back().push_back(QString::fromStdString(values.back().back()));
            }
        }
        for (int k = 0; k < keyCount; ++k) {
            keys.push_back("Key" + std::to_string(k));
            qKeys.push_back(QString::fromStdString(keys.back()));
        }
    }
};

class Files
{
public:
    explicit Files(const Shape& shape)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "settings-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        mFolder = pattern;
        xml = mFolder + "/settings.xml";
        ini = mFolder + "/settings.ini";
        scratch = mFolder + "/scratch";

        XMLSection file(xml.c_str(), true);
        std::ofstream out(ini);
        for (std::size_t s = 0; s < shape.sections.size(); ++s) {
            std::unique_ptr<ConfigurationSection> section(file.CreateSubSection(shape.sections[s].c_str()));
            out << "[" << shape.sections[s] << "]\n";
            for (std::size_t k = 0; k < shape.keys.size(); ++k) {
                section->WriteKey(shape.keys[k].c_str(), shape.values[s][k].c_str());
                out << shape.keys[k] << "=" << shape.values[s][k] << "\n";
            }
        }
        file.Flush();
    }
    ~Files() { std::filesystem::remove_all(mFolder); }

    std::string xml, ini, scratch;

private:
    std::string mFolder;
};

const Shape& SettingsFileShape()
{
    static const Shape shape(100, 100);
    return shape;
}

const Shape& FlatShape()
{
    static const Shape shape(1, 10000);
    return shape;
}

const Shape& GetShape(const benchmark::State& state)
{
    return state.range(0) == 100 ? SettingsFileShape() : FlatShape();
}

const Files& GetFiles(const benchmark::State& state)
{
    if (state.range(0) == 100) {
        static const Files files(SettingsFileShape());
        return files;
    }
    static const Files files(FlatShape());
    return files;
}

// A new time stamp, so that QSettings reads the file again.
void Touch(const std::string& path)
{
    static long seconds = 1000000000;
    const struct timespec times[2] = {{++seconds, 0}, {seconds, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

void Finish(benchmark::State& state, const Shape& shape, std::size_t checksum)
{
    benchmark::DoNotOptimize(checksum);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * shape.sections.size() * shape.keys.size()));
}

void BM_XMLSection_Load(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    std::size_t checksum = 0;
    std::string value;
    for (auto _ : state) {
        XMLSection file(files.xml.c_str(), false);
        for (const std::string& name : shape.sections) {
            std::unique_ptr<ConfigurationSection> section(file.CopyAndChangeSubSection(name.c_str()));
            for (const std::string& key : shape.keys) {
                section->ReadKey(key.c_str(), value);
                checksum += value.size();
            }
        }
    }
    Finish(state, shape, checksum);
}

void BM_IniFileSection_Load(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    std::size_t checksum = 0;
    std::string value;
    for (auto _ : state) {
        IniFileSection section(files.ini.c_str(), "");
        for (const std::string& name : shape.sections) {
            section.ChangeSection(name.c_str());
            for (const std::string& key : shape.keys) {
                section.ReadKey(key.c_str(), value);
                checksum += value.size();
            }
        }
    }
    Finish(state, shape, checksum);
}

void BM_QSettings_Load(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    const QString path = QString::fromStdString(files.ini);
    std::size_t checksum = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Touch(files.ini);
        state.ResumeTiming();
        QSettings settings(path, QSettings::IniFormat);
        for (const QString& name : shape.qSections) {
            settings.beginGroup(name);
            for (const QString& key : shape.qKeys)
                checksum += static_cast<std::size_t>(settings.value(key).toString().size());
            settings.endGroup();
        }
    }
    Finish(state, shape, checksum);
}

void BM_XMLSection_Save(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(files.scratch);
        state.ResumeTiming();
        XMLSection file(files.scratch.c_str(), true);
        for (std::size_t s = 0; s < shape.sections.size(); ++s) {
            std::unique_ptr<ConfigurationSection> section(file.CreateSubSection(shape.sections[s].c_str()));
            for (std::size_t k = 0; k < shape.keys.size(); ++k)
                section->WriteKey(shape.keys[k].c_str(), shape.values[s][k].c_str());
        }
        if (!file.Flush())
            state.SkipWithError("Flush failed");
    }
    Finish(state, shape, 0);
}

void BM_IniFileSection_Save(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(files.scratch);
        state.ResumeTiming();
        IniFileSection section(files.scratch.c_str(), "");
        section.SetAutoSave(false);
        for (std::size_t s = 0; s < shape.sections.size(); ++s) {
            section.ChangeSection(shape.sections[s].c_str());
            for (std::size_t k = 0; k < shape.keys.size(); ++k)
                section.WriteKey(shape.keys[k].c_str(), shape.values[s][k].c_str());
        }
        if (!section.Flush())
            state.SkipWithError("Flush failed");
    }
    Finish(state, shape, 0);
}

void BM_QSettings_Save(benchmark::State& state)
{
    const Shape& shape = GetShape(state);
    const Files& files = GetFiles(state);
    const QString path = QString::fromStdString(files.scratch);
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(files.scratch);
        state.ResumeTiming();
        QSettings settings(path, QSettings::IniFormat);
        for (std::size_t s = 0; s < shape.sections.size(); ++s) {
            settings.beginGroup(shape.qSections[s]);
            for (std::size_t k = 0; k < shape.keys.size(); ++k)
                settings.setValue(shape.qKeys[k], shape.qValues[s][k]);
            settings.endGroup();
        }
        settings.sync();
        if (settings.status() != QSettings::NoError)
            state.SkipWithError("sync failed");
    }
    Finish(state, shape, 0);
}

} // namespace

// range(0): sections; range(1): keys per section.
BENCHMARK(BM_XMLSection_Load)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IniFileSection_Load)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QSettings_Load)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XMLSection_Save)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IniFileSection_Save)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QSettings_Save)->Args({100, 100})->Args({1, 10000})->Unit(benchmark::kMillisecond);
