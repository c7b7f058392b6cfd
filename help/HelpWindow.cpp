#include <KORVAutlwin/help/HelpWindow.h>

#include <KORVAutlwin/help/CHHCtrl.h>
#include <KORVAutlwin/help/ChmStorage.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {
constexpr unsigned int kContentsTab = 35190;
constexpr unsigned int kIndexTab = 35191;
constexpr unsigned int kSearchTab = 35192;
constexpr unsigned int kSearchButton = 35193;
constexpr int kTopicRole = Qt::UserRole + 1;
} // namespace

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    auto* splitter = new QSplitter(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);

    mTabs = new QTabWidget(splitter);
    mContents = new QTreeWidget(mTabs);
    mContents->setHeaderHidden(true);
    mTabs->addTab(mContents, LanguageString::Get(kContentsTab));
    mIndex = new QListWidget(mTabs);
    mTabs->addTab(mIndex, LanguageString::Get(kIndexTab));
    auto* search = new QWidget(mTabs);
    auto* searchLayout = new QVBoxLayout(search);
    auto* searchRow = new QHBoxLayout();
    mSearchText = new QLineEdit(search);
    auto* searchButton = new QPushButton(LanguageString::Get(kSearchButton), search);
    searchRow->addWidget(mSearchText);
    searchRow->addWidget(searchButton);
    searchLayout->addLayout(searchRow);
    mResults = new QListWidget(search);
    searchLayout->addWidget(mResults);
    mTabs->addTab(search, LanguageString::Get(kSearchTab));

    auto* paneHolder = new QWidget(splitter);
    mPane = new CHHCtrl();
    mPane->Create(paneHolder, QRect(0, 0, 600, 500), 0xF, "", false);
    auto* paneLayout = new QVBoxLayout(paneHolder);
    paneLayout->setContentsMargins(0, 0, 0, 0);
    paneLayout->addWidget(mPane);
    splitter->setStretchFactor(1, 3);
    resize(900, 600);

    auto open = [this](const QVariant& topic) {
        if (topic.isValid())
            ShowTopic(topic.toString().toStdString());
    };
    connect(mContents, &QTreeWidget::itemActivated, this,
            [open](QTreeWidgetItem* item) { open(item->data(0, kTopicRole)); });
    connect(mContents, &QTreeWidget::itemClicked, this,
            [open](QTreeWidgetItem* item) { open(item->data(0, kTopicRole)); });
    for (QListWidget* list : {mIndex, mResults})
        connect(list, &QListWidget::itemClicked, this, [open](QListWidgetItem* item) { open(item->data(kTopicRole)); });
    auto runSearch = [this] { RunSearch(mSearchText->text().toStdString()); };
    connect(searchButton, &QPushButton::clicked, this, runSearch);
    connect(mSearchText, &QLineEdit::returnPressed, this, runSearch);
}

HelpWindow::~HelpWindow() = default;

bool HelpWindow::Open(const std::string& file)
{
    const ChmStorage storage(file);
    if (!storage.IsOpen())
        return false;
    mEntries = ChmContents::Read(storage);
    if (file != mFile) {
        mFile = file;
        // A new pane: its map-id table belongs to the file it was first read from,
        // and its home is the file's first topic.
        std::string home;
        for (const ChmContents::Entry& entry : mEntries)
            if (home.empty() && !entry.local.empty())
                home = "/" + entry.local;
        QWidget* holder = mPane->parentWidget();
        delete mPane;
        mPane = new CHHCtrl();
        mPane->Create(holder, holder->rect(), 0xF, home.c_str(), false);
        holder->layout()->addWidget(mPane);
        mPane->SetChmFile(file.c_str());
    }
    FillLists();
    return true;
}

void HelpWindow::FillLists()
{
    mContents->clear();
    mIndex->clear();
    mResults->clear();
    std::vector<QTreeWidgetItem*> parents;
    for (const ChmContents::Entry& entry : mEntries) {
        const int depth = std::min<int>(entry.depth, static_cast<int>(parents.size()));
        parents.resize(depth);
        auto* item = depth == 0 ? new QTreeWidgetItem(mContents) : new QTreeWidgetItem(parents.back());
        item->setText(0, QString::fromStdString(entry.name));
        if (!entry.local.empty())
            item->setData(0, kTopicRole, QString::fromStdString(entry.local));
        parents.push_back(item);
    }
    mContents->expandAll();
    std::vector<ChmContents::Entry> sorted = mEntries;
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
        return QString::fromStdString(a.name).compare(QString::fromStdString(b.name), Qt::CaseInsensitive) < 0;
    });
    for (const ChmContents::Entry& entry : sorted) {
        auto* item = new QListWidgetItem(QString::fromStdString(entry.name), mIndex);
        item->setData(kTopicRole, QString::fromStdString(entry.local));
    }
}

void HelpWindow::ShowTab(ETab tab)
{
    mTabs->setCurrentIndex(tab);
    show();
    raise();
    activateWindow();
}

HRESULT HelpWindow::ShowDefaultTopic()
{
    for (const ChmContents::Entry& entry : mEntries)
        if (!entry.local.empty())
            return ShowTopic(entry.local);
    return E_FAIL;
}

HRESULT HelpWindow::ShowTopic(const std::string& topic)
{
    return mPane->NavigateChm(topic.starts_with('/') ? topic.c_str() : ("/" + topic).c_str());
}

HRESULT HelpWindow::ShowMapId(unsigned int id)
{
    return mPane->NavigateChm(id);
}

int HelpWindow::RunSearch(const std::string& word)
{
    mSearchText->setText(QString::fromStdString(word));
    mResults->clear();
    const ChmStorage storage(mFile);
    for (const ChmContents::Entry& entry : ChmContents::Search(storage, mEntries, word)) {
        auto* item = new QListWidgetItem(QString::fromStdString(entry.name), mResults);
        item->setData(kTopicRole, QString::fromStdString(entry.local));
    }
    return mResults->count();
}
