#pragma once
/// \class HelpWindow
/// The help viewer of the platform: a top-level window with the contents, the
/// index and a full-text search of a compiled help file on the left, and a help
/// pane (CHHCtrl with home, back, forward and print) showing its pages.

#include <KORVAutlwin/help/ChmContents.h>
#include <KORVAutl/HResult.h>

#include <QWidget>

#include <string>
#include <vector>

class CHHCtrl;
class QTabWidget;
class QTreeWidget;
class QListWidget;
class QLineEdit;

class HelpWindow : public QWidget
{
    Q_OBJECT
public:
    /// The tabs of the left side.
    enum ETab
    {
        ETabContents = 0,
        ETabIndex = 1,
        ETabSearch = 2,
    };

    explicit HelpWindow(QWidget* parent = nullptr);
    ~HelpWindow() override;

    /// Opens `file` (a full path): its contents, index and title. False when it can't be read.
    bool Open(const std::string& file);
    const std::string& GetFile() const { return mFile; }
    /// Shows the window with tab `tab` in front.
    void ShowTab(ETab tab);
    /// The first topic of the contents.
    HRESULT ShowDefaultTopic();
    /// The topic path `topic` of the file.
    HRESULT ShowTopic(const std::string& topic);
    /// The topic of map id `id`.
    HRESULT ShowMapId(unsigned int id);
    /// Runs the search of the search tab for `word`; the number of pages found.
    int RunSearch(const std::string& word);
    CHHCtrl* GetPane() const { return mPane; }
    QTreeWidget* GetContents() const { return mContents; }
    QListWidget* GetResults() const { return mResults; }

private:
    void FillLists();

    std::string mFile;
    std::vector<ChmContents::Entry> mEntries;
    QTabWidget* mTabs = nullptr;
    QTreeWidget* mContents = nullptr;
    QListWidget* mIndex = nullptr;
    QLineEdit* mSearchText = nullptr;
    QListWidget* mResults = nullptr;
    CHHCtrl* mPane = nullptr;
};
