#include <KORVAutlwin/favourites/AddCommandToFavouritesDlg.h>

#include <KORVAutlwin/favourites/CommandsListBox.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QToolBar>

namespace {

constexpr unsigned int kDescriptionText = 16120;
constexpr unsigned int kSubMenuText = 16117;
constexpr unsigned int kToolBarTitle = 16139;
constexpr unsigned int kRecentFileEntry = 57616;
constexpr int kToolBarRole = Qt::UserRole + 1;

// The menu text without its first "&", cut at the tab before the shortcut.
std::string EntryText(const QAction* action)
{
    QString text = action->text();
    const int ampersand = text.indexOf('&');
    if (ampersand >= 0)
        text.remove(ampersand, 1);
    const int tab = text.indexOf('\t');
    if (tab >= 0)
        text.truncate(tab);
    return text.trimmed().toStdString();
}

bool HasString(unsigned int commandId) { return commandId && *LanguageString::Get(commandId); }

} // namespace

AddCommandToFavouritesDlg::AddCommandToFavouritesDlg(FavouritesTreeRows* favouritesTree, const unsigned int* ids,
                                                     unsigned int menuCount, QWidget* parent)
    : TsDialog(kTemplateId, parent), tree(favouritesTree), menuIds(ids, ids + (ids ? menuCount : 0)),
      categories(new QListWidget(this)), commands(new CommandsListBox(this)), description(new QLabel(this)),
      note(new QLabel(this)), add(new QPushButton(QObject::tr("&Add"), this))
{
    setWindowTitle(LanguageString::Get(kTemplateId));
    setModal(false);
    categories->setProperty(korva::kControlIdProperty, kCategoriesCtrlId);
    commands->setProperty(korva::kControlIdProperty, kCommandsCtrlId);
    description->setProperty(korva::kControlIdProperty, kDescriptionCtrlId);
    note->setProperty(korva::kControlIdProperty, kNoteCtrlId);
    add->setProperty(korva::kControlIdProperty, kAddCtrlId);
    description->setWordWrap(true);
    description->setMinimumHeight(2 * fontMetrics().height());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->addButton(add, QDialogButtonBox::ActionRole);
    auto* layout = new QGridLayout(this);
    layout->addWidget(categories, 0, 0);
    layout->addWidget(commands, 0, 1);
    layout->setColumnStretch(1, 2);
    layout->addWidget(description, 1, 0, 1, 2);
    layout->addWidget(note, 2, 0, 1, 2);
    layout->addWidget(buttons, 3, 0, 1, 2);
    resize(520, 380);

    connect(categories, &QListWidget::currentRowChanged, this, [this] { OnSelectCategory(); });
    connect(commands, &QListWidget::currentRowChanged, this, [this] { OnSelectCommand(); });
    connect(commands, &QListWidget::itemDoubleClicked, this, [this] { OnAdd(); });
    connect(add, &QPushButton::clicked, this, [this] { OnAdd(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    OnInitDialog();
}

AddCommandToFavouritesDlg::~AddCommandToFavouritesDlg() = default;

void AddCommandToFavouritesDlg::OnInitDialog()
{
    if (tree)
        for (unsigned int toolbarId : tree->GetToolbarIDs())
            FavouritesManager::LoadToolBar(toolbarId, images, imageMap);

    for (unsigned int menuId : menuIds) {
        try {
            QMenu* menu = MenuResource::Load(menuId, this);
            menus.push_back(menu);
            for (QAction* entry : menu->actions())
                if (!entry->isSeparator())
                    categories->addItem(QString::fromStdString(EntryText(entry)));
        } catch (const Exception&) {
            // A menu the module does not have offers nothing.
        }
    }
    const WinApp* app = WinApp::GetApp();
    if (QWidget* main = app ? app->GetMainWnd() : nullptr) {
        for (QToolBar* toolBar : main->findChildren<QToolBar*>()) {
            bool offered = false;
            for (const QAction* action : toolBar->actions())
                offered = offered || (!action->isSeparator() && HasString(korva::GetCommandId(action)));
            if (!offered)
                continue;
            auto* row = new QListWidgetItem(toolBar->windowTitle().isEmpty() ? QString(LanguageString::Get(kToolBarTitle))
                                                                             : toolBar->windowTitle());
            row->setData(kToolBarRole, QVariant::fromValue<quintptr>(reinterpret_cast<quintptr>(toolBar)));
            categories->addItem(row);
        }
    }
    OnSelectCommand();
}

void AddCommandToFavouritesDlg::OnSelectCategory()
{
    const QListWidgetItem* row = categories->currentItem();
    if (!row)
        return;
    if (const auto toolBar = row->data(kToolBarRole).value<quintptr>()) {
        FillFromToolBar(reinterpret_cast<QToolBar*>(toolBar));
        return;
    }
    // Menu entries come first, in the order of the menus and their entries.
    int position = categories->currentRow();
    for (QMenu* menu : menus)
        for (QAction* entry : menu->actions()) {
            if (entry->isSeparator())
                continue;
            if (position-- == 0) {
                FillFromPopup(entry->menu());
                return;
            }
        }
}

void AddCommandToFavouritesDlg::FillFromPopup(QMenu* popup)
{
    commands->ResetContent();
    listedPopup = popup;
    if (popup) {
        const QList<QAction*> entries = popup->actions();
        for (int position = 0; position < entries.size(); ++position) {
            const QAction* entry = entries[position];
            const unsigned int commandId = korva::GetCommandId(entry);
            if (entry->isSeparator() || commandId == kRecentFileEntry)
                continue;
            if (entry->menu() && entry->menu()->actions().size() == 1 &&
                entry->menu()->actions().front()->text() == "N/A")
                continue;
            CommandsListBox::Item item;
            item.text = EntryText(entry);
            item.commandId = entry->menu() ? 0 : commandId;
            item.position = position;
            const auto picture = imageMap.find(static_cast<unsigned short>(commandId));
            if (picture != imageMap.end() && picture->second < static_cast<int>(images.size()))
                item.icon = images[picture->second];
            commands->AddItem(std::move(item));
        }
    }
    OnSelectCommand();
}

void AddCommandToFavouritesDlg::FillFromToolBar(QToolBar* toolBar)
{
    commands->ResetContent();
    listedPopup = nullptr;
    const QList<QAction*> buttons = toolBar->actions();
    for (int position = 0; position < buttons.size(); ++position) {
        const QAction* button = buttons[position];
        const unsigned int commandId = korva::GetCommandId(button);
        if (button->isSeparator() || !HasString(commandId))
            continue;
        const std::string text = LanguageString::Get(commandId);
        const std::size_t lineFeed = text.find('\n');
        CommandsListBox::Item item;
        item.text = lineFeed == std::string::npos || lineFeed + 1 == text.size() ? text : text.substr(lineFeed + 1);
        item.commandId = commandId;
        item.position = position;
        if (!button->icon().isNull())
            item.icon = button->icon().pixmap(16, 15).toImage();
        commands->AddItem(std::move(item));
    }
    OnSelectCommand();
}

void AddCommandToFavouritesDlg::OnSelectCommand()
{
    const CommandsListBox::Item* item = commands->GetItem(commands->currentRow());
    std::string text = LanguageString::Get(kDescriptionText);
    if (item && item->commandId) {
        std::string own = LanguageString::Get(item->commandId);
        own = own.substr(0, own.find('\n'));
        text = TsString::Format("%s %s", text.c_str(), own.c_str());
    } else if (item) {
        text = LanguageString::Get(kSubMenuText);
    }
    description->setText(QString::fromStdString(text));
    add->setEnabled(item && item->commandId);
}

void AddCommandToFavouritesDlg::OnAdd()
{
    const CommandsListBox::Item* item = commands->GetItem(commands->currentRow());
    if (!item)
        return;
    if (!item->commandId) {
        if (listedPopup && item->position < listedPopup->actions().size())
            FillFromPopup(listedPopup->actions()[item->position]->menu());
        return;
    }
    if (tree)
        tree->AddToFavourites(new FavouriteCommandItem(item->text.c_str(), item->commandId));
}
