#include <KORVAutlwin/workspace/AcceleratorTable.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/TsApp.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>

#include <QKeyEvent>
#include <QWidget>
#include <QKeySequence>
#include <QXmlStreamReader>

namespace {

constexpr const char* kAcceleratorType = "ACCEL";
constexpr Qt::KeyboardModifiers kModifiers = Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier |
                                             Qt::MetaModifier;

} // namespace

AcceleratorTable AcceleratorTable::Load(unsigned int id)
{
    AcceleratorTable table;
    std::size_t size = 0;
    const char* data = LanguageString::GetModule()->FindResource(id, kAcceleratorType, &size);
    if (!data)
        data = korva::EnglishResourceModule().FindResource(id, kAcceleratorType, &size);
    if (!data)
        return table;
    QXmlStreamReader xml(QByteArray::fromRawData(data, static_cast<qsizetype>(size)));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != QLatin1String("key"))
            continue;
        bool ok = false;
        const unsigned int command = xml.attributes().value(QLatin1String("id")).toUInt(&ok);
        const QKeySequence sequence(xml.attributes().value(QLatin1String("sequence")).toString(),
                                    QKeySequence::PortableText);
        if (ok && command != 0 && sequence.count() == 1)
            table.mKeys.emplace_back(sequence[0].toCombined(), command);
    }
    return table;
}

unsigned int AcceleratorTable::Find(const QEvent* event) const
{
    if (!event || event->type() != QEvent::KeyPress)
        return 0;
    const auto* key = static_cast<const QKeyEvent*>(event);
    const int pressed = QKeyCombination(key->modifiers() & kModifiers, Qt::Key(key->key())).toCombined();
    for (const auto& [combined, command] : mKeys)
        if (combined == pressed)
            return command;
    return 0;
}

bool AcceleratorTable::Translate(const QEvent* event, CmdTarget* target) const
{
    const unsigned int command = Find(event);
    if (command == 0)
        return false;
    if (!(target && target->ExecuteCommand(command)))
        if (auto* main = dynamic_cast<CmdTarget*>(TsGetMainWnd()); main && main != target)
            main->ExecuteCommand(command);
    return true;
}
