#include <KORVAutlwin/frame/MenuResource.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUIUtilities.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsString.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QXmlStreamReader>

#include <memory>

namespace {

constexpr const char* kMenuType = "MENU";
constexpr unsigned int kMenuMissing = 30602;   // "The menu resource %u does not exist."
constexpr unsigned int kMenuInvalid = 30603;   // "The menu resource %u is not a valid menu: %s (line %lld, column %lld)."

const char* FindMenu(unsigned int id, std::size_t* size)
{
    // Like strings, a menu that a translated module lacks comes from the English one.
    if (const char* data = LanguageString::GetModule()->FindResource(id, kMenuType, size))
        return data;
    return korva::EnglishResourceModule().FindResource(id, kMenuType, size);
}

bool IsTrue(const QStringView value)
{
    return value == u"true" || value == u"1";
}

void ReadEntries(QXmlStreamReader& xml, QMenu* menu)
{
    while (xml.readNextStartElement()) {
        const QStringView name = xml.name();
        const QXmlStreamAttributes attributes = xml.attributes();
        if (name == u"popup") {
            auto* popup = new QMenu(attributes.value(QLatin1String("text")).toString(), menu);
            menu->addMenu(popup);
            if (attributes.hasAttribute(QLatin1String("enabled")))
                popup->menuAction()->setEnabled(IsTrue(attributes.value(QLatin1String("enabled"))));
            ReadEntries(xml, popup);
        } else if (name == u"item") {
            bool ok = false;
            const unsigned int id = attributes.value(QLatin1String("id")).toUInt(&ok);
            if (!ok || id == 0) {
                xml.raiseError(QStringLiteral("an item has no valid command id"));
                return;
            }
            auto* action = new QAction(attributes.value(QLatin1String("text")).toString(), menu);
            action->setProperty(korva::kCommandIdProperty, id);
            if (attributes.hasAttribute(QLatin1String("checked"))) {
                action->setCheckable(true);
                action->setChecked(IsTrue(attributes.value(QLatin1String("checked"))));
            }
            if (attributes.hasAttribute(QLatin1String("enabled")))
                action->setEnabled(IsTrue(attributes.value(QLatin1String("enabled"))));
            menu->addAction(action);
            xml.skipCurrentElement();
        } else if (name == u"separator") {
            menu->addSeparator();
            xml.skipCurrentElement();
        } else {
            xml.raiseError(QStringLiteral("unknown element <%1>").arg(name));
            return;
        }
    }
}

} // namespace

bool MenuResource::Exists(unsigned int id)
{
    return FindMenu(id, nullptr) != nullptr;
}

QMenu* MenuResource::Load(unsigned int id, QWidget* parent)
{
    std::size_t size = 0;
    const char* data = FindMenu(id, &size);
    if (!data)
        throw Exception(TsString::Format(kMenuMissing, id));
    return Parse(data, size, id, parent);
}

QMenu* MenuResource::Parse(const char* data, std::size_t size, unsigned int id, QWidget* parent)
{
    QXmlStreamReader xml(QByteArray::fromRawData(data ? data : "", data ? static_cast<qsizetype>(size) : 0));
    auto menu = std::make_unique<QMenu>(parent);
    if (xml.readNextStartElement()) {
        if (xml.name() == u"menu")
            ReadEntries(xml, menu.get());
        else
            xml.raiseError(QStringLiteral("the root element is not <menu>"));
    }
    // Anything after the root element must still be well-formed.
    while (!xml.atEnd() && !xml.hasError())
        xml.readNext();
    if (xml.hasError()) {
        const std::string why = xml.errorString().toStdString();
        throw Exception(TsString::Format(kMenuInvalid, id, why.c_str(), static_cast<long long>(xml.lineNumber()),
                                         static_cast<long long>(xml.columnNumber())));
    }
    return menu.release();
}

void MenuResource::AddToMenuBar(unsigned int id, QMenuBar* bar, CmdTarget* target)
{
    std::unique_ptr<QMenu> loaded(Load(id, nullptr));
    for (QAction* action : loaded->actions()) {
        if (QMenu* popup = action->menu()) {
            popup->setParent(bar, popup->windowFlags());
            bar->addMenu(popup);
            QObject::connect(popup, &QMenu::aboutToShow, bar,
                             [target, popup] { GUIUtilities::EnableMenu(target, popup); });
        } else {
            action->setParent(bar);
            bar->addAction(action);
        }
    }
    QObject::connect(bar, &QMenuBar::triggered, bar, [target](QAction* action) {
        if (const unsigned int command = korva::GetCommandId(action))
            target->ExecuteCommand(command);
    });
}
