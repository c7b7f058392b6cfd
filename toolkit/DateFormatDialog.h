#pragma once
/// \class SpecifyDateFormat
/// The dialog that asks the user how to read a date the program could not parse
/// by itself: it shows the sample date, offers the recently used formats (latest
/// first, from "DateTimeDefaults") in an editable box, and explains the format
/// letters on demand. OK remembers the format given.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

class SpecifyDateFormat : public TsDialog
{
    Q_OBJECT
public:
    static constexpr unsigned int kTemplateId = 13120;
    /// Control ids.
    enum EControl
    {
        eHeading = 13406,
        eDetailsButton = 13401,
        eDetailsText = 13405,
        eSampleDate = 13403,
        eSampleLabel = 13402,
        eFormatBox = 13395
    };

    /// An empty `format` starts from the locale's date and time formats.
    SpecifyDateFormat(const std::string& heading, const std::string& sampleDate, const std::string& format,
                      QWidget* parent = nullptr);
    /// The same for wide texts, converted to the narrow (UTF-8) form.
    SpecifyDateFormat(const std::wstring& heading, const std::wstring& sampleDate, const std::wstring& format,
                      QWidget* parent = nullptr);
    ~SpecifyDateFormat() override;

    /// The format given (after OK, the box's text).
    std::string GetDateFormat() const { return mFormat; }
    /// Clears the sample date and its label, for a caller that has no sample.
    void SetNoDate();
    /// The table of format letters shown under the details button.
    static std::string GetFormatDetails();
    /// Whether the details are shown.
    bool DetailsShown() const { return mDetailsShown; }

protected:
    virtual void OnInitDialog();
    /// Shows or hides the details; the width stays as the user made it.
    virtual void DetailsButton();
    virtual void OnUpdateOkButton(CCmdUI* cmdUI);
    virtual void OnBnClickedOk();

private:
    std::string mHeading;
    std::string mSampleDate;
    std::string mFormat;
    bool mDetailsShown = false;
    QLabel* mHeadingLabel = nullptr;
    QPushButton* mDetailsButton = nullptr;
    QPlainTextEdit* mDetailsText = nullptr;
    QLabel* mSampleDateLabel = nullptr;
    QLabel* mSampleLabel = nullptr;
    QComboBox* mFormatBox = nullptr;
    QPushButton* mOkButton = nullptr;
};
