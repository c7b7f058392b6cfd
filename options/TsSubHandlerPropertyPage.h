#pragma once
// A property page that shows one of several sub-pages over a placeholder,
// such as the settings of the method chosen above it.

#include <KORVAutlwin/options/TsPropertyPage.h>

class TsSubPropertyPage;

/// A TsPropertyPage hosting the current TsSubPropertyPage over a placeholder control.
class TsSubHandlerPropertyPage : public TsPropertyPage
{
    Q_OBJECT
public:
    /// `placeholderId` is the ctrlId of the placeholder, which this page creates
    /// filling the page; a derived page may lay it out anew.
    TsSubHandlerPropertyPage(unsigned int placeholderId, unsigned int templateId, unsigned int captionId,
                             BasePropertyPageHelper* helper = nullptr,
                             unsigned int helpTopicId = static_cast<unsigned int>(-1));
    /// Forgets the sub-page, which stays its owner's.
    ~TsSubHandlerPropertyPage() override;

    bool OnSetActive() override;
    bool OnKillActive() override;
    /// The page's OnApply, then, when that succeeded, the sub-page's.
    bool OnApply() override;

    /// Shows `page` (not owned; null: none) over the placeholder in place of the present one.
    void SetCurrentSubPage(TsSubPropertyPage* page);
    TsSubPropertyPage* GetCurrentSubPage() const { return mCurrent; }
    QWidget* GetPlaceholder() const { return mPlaceholder; }
    unsigned int GetPlaceholderId() const { return mPlaceholderId; }
    /// Lays the sub-page over the placeholder's rectangle.
    void UpdateCurrentPageSize();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    TsSubPropertyPage* mCurrent = nullptr;
    unsigned int mPlaceholderId;
    QWidget* mPlaceholder;
};
