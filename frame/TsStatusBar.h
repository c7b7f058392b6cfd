#pragma once
/// \class TsStatusBar
/// The frame's status bar: a row of panes, each with an id, a style, a width in
/// pixels and a text, drawn by the bar itself from left to right. A pane can
/// host a window (a gauge, a spin indicator) that the bar keeps over the pane,
/// one pixel inside its border, whenever panes come and go or the bar is resized.
///
/// A new bar has one pane: the message pane, id 0, stretching over the room the
/// other panes leave. QStatusBar::showMessage shows its text in the first pane
/// with id 0 for as long as the message lasts.

#include <KORVAutlwin/frame/StatusPaneModel.h>

#include <QPointer>
#include <QStatusBar>

#include <string>
#include <vector>

class TsStatusBar : public QStatusBar, public StatusPaneModel<StatusPane>
{
    Q_OBJECT

public:
    explicit TsStatusBar(QWidget* parent = nullptr);
    ~TsStatusBar() override;

    /// Replaces all panes by `count` panes with the ids of `ids` (null: all 0).
    /// A pane's text is the language string of its id (none for id 0), its
    /// width that of its text; pane 0 stretches. Hosted windows are let go.
    bool SetIndicators(const unsigned int* ids, int count);

    void SetPaneInfo(int index, unsigned int id, unsigned int style, int width);
    unsigned int GetPaneStyle(int index) const;
    void SetPaneStyle(int index, unsigned int style);
    /// The pane's rectangle in the bar; empty for an index out of range or a pane of width 0.
    QRect GetItemRect(int index) const;

    /// The pane that `window` covers, or -1 when it is not hosted.
    int GetWindowIndex(const QWidget* window) const;
    /// Moves every hosted window over its pane, inflated by -1 on all sides.
    void LayoutWindows();

    // TsStatusAccess
    int SetPaneText(int index, const std::string& text, int update = 1) override;
    /// `window` becomes a child of the bar if it is not one; the window is not
    /// shown here. A window that is hosted already leaves its old pane first.
    bool InsertWindow(QWidget* window, int width, int index, unsigned int id) override;
    void RemoveWindow(QWidget* window, bool hide, unsigned int id) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct HostedWindow
    {
        QPointer<QWidget> window;
        int index;
    };

    void RemovePane(int index);
    std::vector<QRect> PaneRects() const;

    std::vector<HostedWindow> mWindows;
};
