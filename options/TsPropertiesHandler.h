#pragma once
// Whatever the modeless property sheet shows at present: the current
// selection of the program offers its pages through this.

class TsModelessPropertySheet;
class TsPropertyPage;
class BasePropertyPageHelper;

/// The source of the modeless sheet's pages: the thing selected in the program.
class TsPropertiesHandler
{
public:
    virtual ~TsPropertiesHandler() = default;
    /// Offers the pages it wants through sheet->AddRefCountedPage.
    virtual void AddPages(TsModelessPropertySheet* sheet) = 0;
    /// The page to activate, given the page active before (may be null).
    virtual TsPropertyPage* GetActivePage(TsPropertyPage* former) = 0;
    /// The helper the sheet listens to, or null.
    virtual BasePropertyPageHelper* GetHelper() = 0;
};
