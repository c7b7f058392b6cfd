#pragma once
/// \class AboutDialog
/// The About box: the application's picture, name (in the product colour),
/// version, the acknowledgement of the libraries the suite uses, and a details
/// button that opens further text.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

class AboutDialog : public TsDialog
{
    Q_OBJECT

public:
    /// The dialog's form.
    static constexpr unsigned int kTemplateId = 13101;
    /// The colours of the product name (0x00BBGGRR), the second for dark themes.
    static constexpr unsigned int kProductColor = 0x00652755;
    static constexpr unsigned int kProductColorDark = 0x00682C41;

    /// An empty `appName` becomes the application's name; a `bitmapId` of -1 or -2 becomes 13024.
    AboutDialog(QWidget* parent, const char* appName, unsigned int bitmapId);
    /// With two further lines of text below the version; `showDetailsButton` shows the details button.
    AboutDialog(QWidget* parent, const char* appName, unsigned int bitmapId, const char* text1, const char* text2,
                bool showDetailsButton);

    /// The caption of the details button (default: language string 13181).
    void SetDetailsButtonText(const char* text);
    /// The text the details button opens.
    void SetDetailsText(const char* text);

    const std::string& GetAppName() const { return mAppName; }

private:
    void Build(const char* text1, const char* text2, bool showDetailsButton);
    void ToggleDetails();

    std::string mAppName;
    unsigned int mBitmapId;
    QPushButton* mDetailsButton = nullptr;
    QPlainTextEdit* mDetails = nullptr;
};
