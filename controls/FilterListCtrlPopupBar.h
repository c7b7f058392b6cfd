#pragma once
// A popup that filters a long list by typed text: a combo box with the
// remembered filters on top, a virtual list of the visible items below. The
// size and the last 20 filters live in the profile section "PopupFilterListCtrl".

#include <KORVAutlwin/controls/FilterListItems.h>

#include <QBasicTimer>
#include <QFrame>
#include <QPoint>

#include <string>
#include <vector>

class QComboBox;
class QEventLoop;
class TsListCtrl;

/// The filter popup: a combo box of remembered filters over a virtual list of the items that pass.
class FilterListCtrlPopupBar : public QFrame
{
    Q_OBJECT

public:
    static constexpr int kFilterTimerId = 76354;
    static constexpr int kFilterDelay = 500;
    /// Remembering the selection is skipped above this many selected items.
    static constexpr int kMaxRememberedSelection = 1000;

    /// Reads the size and the filters, and lays the bar out with every item
    /// visible and `initial` (FilterRules::kNoItem for none) selected.
    FilterListCtrlPopupBar(const FilterListItems& items, unsigned int initial, QWidget* parent = nullptr);
    ~FilterListCtrlPopupBar() override;

    /// Shows the popup at `at` and waits: the chosen item's number + 1, or 0.
    int Track(const QPoint& at);
    /// Shows only the items that pass `text`, keeping what stays selected.
    void Filter(const char* text);
    /// Ends the popup with the item of list row `row`, remembering the filter and the size.
    void ChooseRow(int row);

    TsListCtrl* GetList() const { return mList; }
    QComboBox* GetComboBox() const { return mCombo; }
    const std::vector<std::string>& GetFilters() const { return mFilters; }
    const std::vector<unsigned int>& GetVisibleItems() const { return mVisibleItems; }
    bool IsFilterPending() const { return mTimer.isActive(); }

protected:
    void timerEvent(QTimerEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void WriteSettings();
    int FocusedRow() const;

    const FilterListItems* mItems;
    unsigned int mInitialItem;
    int mWidth = 0;
    int mHeight = 0;
    std::vector<std::string> mFilters;
    QComboBox* mCombo = nullptr;
    TsListCtrl* mList = nullptr;
    std::vector<unsigned int> mVisibleItems;
    QBasicTimer mTimer;
    QEventLoop* mLoop = nullptr;
    int mResult = 0;
};

/// Tracks a filter popup over `items` at `point` ((-1, -1): the parent's top
/// left + (5, 5), or the cursor without a parent); the chosen item's number,
/// or -1 if cancelled.
int TrackFilterListCtrlPopup(QWidget* parent, QPoint point, const FilterListItems& items, unsigned int initial);
