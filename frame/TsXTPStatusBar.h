#pragma once
/// \class TsXTPStatusBar
/// The toolkit status bar: panes are widgets of the QStatusBar, each a framed
/// cell with a text or a control, laid out by Qt from left to right and kept to
/// the right edge (the size grip follows the last). A pane with SBPS_STRETCH
/// takes the room that the others leave. Panes are added by id (AddIndicator),
/// sized and styled by SetPaneInfo, and host controls through AddControl; the
/// TsStatusAccess operations are made of these.
///
/// A new bar has one pane: the message pane, id 0, stretching. The text of
/// QStatusBar::showMessage appears in the first pane with id 0 while it lasts.
///
/// A control lives inside its pane: when the pane goes, the control becomes a
/// hidden child of the bar again (it is never deleted with the pane).

#include <KORVAutlwin/frame/StatusPaneModel.h>

#include <QPointer>
#include <QStatusBar>

#include <string>
#include <vector>

class QFrame;
class QLabel;

/// A pane of the toolkit bar: a framed cell with a label or a hosted control.
struct TsXTPStatusPane : StatusPane
{
    QFrame* cell;
    QLabel* label;
    QPointer<QWidget> control;
};

class TsXTPStatusBar : public QStatusBar, public StatusPaneModel<TsXTPStatusPane>
{
    Q_OBJECT

public:
    explicit TsXTPStatusBar(QWidget* parent = nullptr);
    ~TsXTPStatusBar() override;

    /// Replaces all panes by `count` panes with the ids of `ids` (null: all 0),
    /// each as AddIndicator makes it; pane 0 stretches. Controls are released.
    bool SetIndicators(const unsigned int* ids, int count);

    /// A new pane with id `id` at `index` (-1 or beyond the end: at the end); its
    /// text is the language string of the id (none for 0), its width that of the
    /// text. Returns the pane's index.
    int AddIndicator(unsigned int id, int index = -1);
    /// Removes the first pane with id `id`, releasing its control; false when there is none.
    bool RemoveIndicator(unsigned int id);
    /// The first pane with id `id` shows `control` instead of its text, one pixel
    /// inside its frame; a control it showed before is released. False without
    /// such a pane or without a control.
    bool AddControl(QWidget* control, unsigned int id);

    /// A width of 0 hides the pane.
    void SetPaneInfo(int index, unsigned int id, unsigned int style, int width);
    /// The pane's rectangle in the bar (after layout); empty for a hidden pane.
    QRect GetItemRect(int index) const;
    /// The pane whose control `window` is, or -1.
    int GetWindowIndex(const QWidget* window) const;

    // TsStatusAccess
    int SetPaneText(int index, const std::string& text, int update = 1) override;
    bool InsertWindow(QWidget* window, int width, int index, unsigned int id) override;
    void RemoveWindow(QWidget* window, bool hide, unsigned int id) override;

private:
    using Pane = TsXTPStatusPane;

    Pane MakePane(unsigned int id, unsigned int style, int width, std::string text);
    void HostControl(int index, QWidget* control);
    void ReleaseControl(Pane& pane);
    void DeletePane(int index);
    void ApplyPane(Pane& pane);
    void ShowText(int index);
    void Relayout();

};
