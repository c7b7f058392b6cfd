#pragma once
// The one modeless property sheet of an application. Its pages follow the
// current selection: pages wanted by the old and the new selection stay where
// they are, new ones go behind them, and pages nobody wants any more go.

#include <KORVAutlwin/options/PropertyPageListener.h>
#include <KORVAutlwin/options/TsPropertySheet.h>

#include <vector>

class TsPropertiesHandler;

/// The application's single modeless property sheet, whose pages follow a TsPropertiesHandler.
class TsModelessPropertySheet : public TsPropertySheet, public PropertyPageListener
{
    Q_OBJECT
public:
    /// The sheet, created on first use with no parent and the title "Properties"; it lives to process end.
    static TsModelessPropertySheet* Instance();

    explicit TsModelessPropertySheet(const char* caption = "Properties");

    /// Restores the position kept in the profile section "WindowPos\Properties".
    bool OnInitDialog() override;
    /// The helper stored a result: the pages are rebuilt for the present handler.
    void ListenerUpdate() override;

    /// One reference more on `page`; a page not in the sheet is queued to be added.
    void AddRefCountedPage(TsPropertyPage* page);
    /// Shows the pages of `handler` (null: none), keeping shared pages in place.
    void ChangePropertiesHandler(TsPropertiesHandler* handler);
    TsPropertiesHandler* GetPropertiesHandler() const { return mHandler; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    std::vector<TsPropertyPage*> mPending;
    TsPropertiesHandler* mHandler = nullptr;
};
