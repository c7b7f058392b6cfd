#pragma once
/// \class FavouritesView
/// A form that holds one favourites tree (control id 16258) filling it, for a
/// docking pane or a child window. It gives the tree its styles and its
/// manager, offers every command to the tree first, keeps the tool bar ids
/// whose pictures commands take, and lets the tree tidy its rows when the
/// application goes idle.

#include <KORVAutlwin/frame/CmdTarget.h>

#include <QBasicTimer>
#include <QWidget>

#include <vector>

class FavouritesManager;
class FavouritesTree;

class FavouritesView : public QWidget, public CmdTarget
{
    Q_OBJECT

public:
    /// The control id of the tree.
    static constexpr unsigned int kTreeId = 16258;
    /// The form's template id.
    static constexpr unsigned int IDD = 16260;
    /// Milliseconds between idle updates of the rows.
    static constexpr int kIdleInterval = 500;

    explicit FavouritesView(FavouritesManager* manager, QWidget* parent = nullptr);
    ~FavouritesView() override;

    /// Gives the tree its styles, multiple selection and Delete, drops from
    /// outside and the manager. Once only.
    void OnInitialUpdate();
    FavouritesTree* GetTree() const { return tree; }
    FavouritesManager* GetFavouritesManager() const { return manager; }
    /// The tool bars whose pictures commands take.
    void SetToolBarIDs(const unsigned int* ids, unsigned int count);
    const std::vector<unsigned int>& GetToolbarIDs() const { return toolBarIds; }
    /// Lets the tree offer the commands of the menus `ids` in its add-command dialog.
    void EnableCommandItems(const unsigned int* ids, unsigned int count);
    /// The tree first, then the view.
    bool OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI) override;
    /// What the view does when the application is idle: the tree's rows are tidied while it is visible.
    void OnIdleUpdateCmdUI();

protected:
    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    FavouritesManager* manager;
    FavouritesTree* tree;
    std::vector<unsigned int> toolBarIds;
    bool initialised = false;
    QBasicTimer idleTimer;
};
