#pragma once
/// \class InfoDialog
/// A dialog that shows an information text, plain or in a browser view, with a
/// chosen set of buttons and, on request, a "do not show again" check box whose
/// choice is remembered in the profile (section "DontShowAgainMessages") as the
/// Buttons value of the button pressed.
///
/// The browser format is shown by a view that the HTML views install with
/// SetBrowserViewFactory; until one is installed, a simple rich-text browser
/// stands in for it.

#include <KORVAutlwin/frame/TsDialog.h>

#include <functional>
#include <string>

class QCheckBox;
class QHBoxLayout;
class QPushButton;

class InfoDialog : public TsDialog
{
    Q_OBJECT

public:
    /// The buttons, as bits of a set.
    enum Buttons
    {
        eClose = 1,
        eOK = 2,
        eCancel = 4,
        eYes = 8,
        eNo = 16
    };
    /// How the text is shown.
    enum ETextFormat
    {
        ePlainText,   // as it stands, in a read-only text field
        eBrowserText  // HTML in a browser view
    };
    /// The size the dialog starts with.
    enum EDialogSize
    {
        eSmallSize,   // 200 x 120 dialog units
        eMediumSize,  // 300 x 200
        eLargeSize    // 420 x 300
    };

    /// Control ids: the text view and the check box.
    static constexpr int kTextCtrlId = 16236;
    static constexpr int kCheckBoxCtrlId = 16237;

    /// Makes the view of browser text inside `parent`: it shows `text` (HTML)
    /// or, when `url` is not empty, the page at `url`.
    using BrowserViewFactory = std::function<QWidget*(QWidget* parent, const std::string& text, const std::string& url)>;

    /// Text and title as texts or string ids; a null or empty title gives the
    /// application's name. The dialog starts with the OK button, which is the
    /// default, medium size, and no check box.
    InfoDialog(const char* text, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    InfoDialog(const char* text, const char* title, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    InfoDialog(const char* text, unsigned int titleId, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    InfoDialog(unsigned int textId, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    InfoDialog(unsigned int textId, const char* title, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    InfoDialog(unsigned int textId, unsigned int titleId, ETextFormat format = ePlainText, QWidget* parent = nullptr);
    ~InfoDialog() override;

    /// Shows the check box and binds it to profile value `key` (null or empty: none).
    void EnableDontShowAgain(const char* key);
    void SetDefaultSize(EDialogSize size);
    /// The buttons to show (bits of Buttons) and the default one.
    void SetButtons(int buttons, Buttons defaultButton);
    void SetText(const char* text, ETextFormat format);
    /// The text of resource `id`: the HTML resource for eBrowserText, the
    /// language string for ePlainText.
    void SetResource(unsigned int id, ETextFormat format);
    /// A page to show in the browser format instead of the text.
    void SetURL(const char* url);

    /// With a key whose stored choice is a button (1, 2, 4, 8, 16), returns that
    /// choice's answer without showing anything: IDCANCEL for Close and Cancel,
    /// IDOK, IDYES, IDNO. Otherwise runs the dialog: a button ends it with that
    /// answer and, with a key, stores the button if the box is checked and 0 if
    /// it is not; Escape and closing the window give IDCANCEL and store nothing.
    int DoModal();

    /// True for an empty key, and unless the stored choice for `key` is a button.
    static bool WillShow(const char* key);

    /// Installs the view of the browser format (an empty one: the stand-in).
    static void SetBrowserViewFactory(BrowserViewFactory factory);

    /// The answer id of a button (Close and Cancel give IDCANCEL); IDCANCEL for any other value.
    static int AnswerOf(int button);

protected:
    /// Stores `button` for the key if the check box is checked, 0 if it is not.
    void CheckDontShowAgain(Buttons button);
    /// Adds `button` with `caption` left of the buttons already added.
    QPushButton* AddButton(Buttons button, const QString& caption);
    /// The widget that shows the text in its format.
    virtual QWidget* CreateTextView();

    void reject() override;
    void showEvent(QShowEvent* event) override;

private:
    void Init(const std::string& text, const std::string& title, ETextFormat format);
    void Build();
    void OnButton(Buttons button);

    std::string dontShowKey;
    std::string text;
    std::string title;
    ETextFormat format = ePlainText;
    EDialogSize size = eMediumSize;
    int buttons = eOK;
    Buttons defaultButton = eOK;
    std::string url;

    QHBoxLayout* mButtonRow = nullptr;
    QCheckBox* mCheckBox = nullptr;
    QPushButton* mDefault = nullptr;
    int mButtonsAt = 0;
    bool mFocusSet = false;
};
