// The page model of an option description with 1,000 options in 10
// categories, side by side with a QFormLayout page of 1,000 Qt editors:
//
//  - XMLOptionsModel: the manager made from the parsed description (items,
//    records, validators, defaults, values read from an empty store), and the
//    grid's rows filled from it.
//  - XMLOptionsModelWithParse: the same, the description text parsed first.
//  - QFormLayoutPage: a widget with a QFormLayout of 1,000 labelled editors of
//    the same kinds (spin boxes, combo boxes, line edits), laid out.
//
// Offscreen.

#include <KORVAutlwin/options/PropertyListModel.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemManager.h>

#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr int kCategories = 10;
constexpr int kItemsPerCategory = 100;

QApplication& Application()
{
    static int argc = 1;
    static char name[] = "bench_options";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication application(argc, argv);
    return application;
}

// The option kinds in turn: number with limits, float, yes/no, list, text.
const std::string& Description()
{
    static const std::string text = [] {
        std::string xml = "<Tessmark>";
        for (int category = 0; category < kCategories; ++category) {
            xml += "<PropertyCategory ShortDescription='Category " + std::to_string(category) + "'>";
            for (int item = 0; item < kItemsPerCategory; ++item) {
                const std::string key = "Option" + std::to_string(item);
                const std::string head = "<PropertyItem Section='S" + std::to_string(category) + "' Key='" + key +
                                         "' ShortDescription='Option " + std::to_string(item) + "' ";
                switch (item % 5) {
                case 0:
                    xml += head + "Type='Number' Default='5'><Validator Type='Number' Min='0' Max='100'/></PropertyItem>";
                    break;
                case 1:
                    xml += head + "Type='Float' Default='0.5'/>";
                    break;
                case 2:
                    xml += head + "Type='YesNo' Default='Yes'/>";
                    break;
                case 3:
                    xml += head + "Type='CustomList' Default='b'><CustomList><Item Value='a' Name='First'/>"
                                  "<Item Value='b' Name='Second'/><Item Value='c' Name='Third'/></CustomList></PropertyItem>";
                    break;
                default:
                    xml += head + "Type='String' Default='text'/>";
                }
            }
            xml += "</PropertyCategory>";
        }
        return xml + "</Tessmark>";
    }();
    return text;
}

void BuildModel(const XMLSection& description, benchmark::State& state)
{
    XMLSection settings;
    XMLOptionsPropertyItemManager manager(&settings, &description, nullptr);
    PropertyListModel rows;
    rows.SetPropertyItemManager(&manager);
    if (rows.GetCount() != kCategories * (kItemsPerCategory + 1))
        state.SkipWithError("wrong row count");
    benchmark::DoNotOptimize(rows.GetCount());
}

void XMLOptionsModel(benchmark::State& state)
{
    XMLStringInputStream stream(Description());
    const XMLSection description(&stream, false);
    for (auto _ : state)
        BuildModel(description, state);
}
BENCHMARK(XMLOptionsModel)->Unit(benchmark::kMillisecond);

void XMLOptionsModelWithParse(benchmark::State& state)
{
    for (auto _ : state) {
        XMLStringInputStream stream(Description());
        const XMLSection description(&stream, false);
        BuildModel(description, state);
    }
}
BENCHMARK(XMLOptionsModelWithParse)->Unit(benchmark::kMillisecond);

void QFormLayoutPage(benchmark::State& state)
{
    Application();
    for (auto _ : state) {
        QWidget page;
        auto* form = new QFormLayout(&page);
        for (int index = 0; index < kCategories * kItemsPerCategory; ++index) {
            const QString label = QStringLiteral("Option %1").arg(index % kItemsPerCategory);
            switch (index % 5) {
            case 0: {
                auto* spin = new QSpinBox;
                spin->setRange(0, 100);
                spin->setValue(5);
                form->addRow(label, spin);
                break;
            }
            case 1: {
                auto* spin = new QDoubleSpinBox;
                spin->setValue(0.5);
                form->addRow(label, spin);
                break;
            }
            case 2: {
                auto* combo = new QComboBox;
                combo->addItems({QStringLiteral("No"), QStringLiteral("Yes")});
                combo->setCurrentIndex(1);
                form->addRow(label, combo);
                break;
            }
            case 3: {
                auto* combo = new QComboBox;
                combo->addItems({QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")});
                combo->setCurrentIndex(1);
                form->addRow(label, combo);
                break;
            }
            default:
                form->addRow(label, new QLineEdit(QStringLiteral("text")));
            }
        }
        form->activate();
        benchmark::DoNotOptimize(form->rowCount());
    }
}
BENCHMARK(QFormLayoutPage)->Unit(benchmark::kMillisecond);

} // namespace
