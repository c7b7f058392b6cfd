#pragma once
/// \class YesYesToAllCancelDialog
/// A question that may be answered for all the cases still to come: Yes, Yes
/// to all and Cancel.

#include <KORVAutlwin/frame/TsDialog.h>

class QLabel;
class QPushButton;

class YesYesToAllCancelDialog : public TsDialog
{
    Q_OBJECT

public:
    /// Results of NewDoModal besides IDCANCEL (2).
    enum EResult
    {
        eYes = 101,
        eYesToAll = 102
    };

    /// Control ids: the text, Yes, Yes to all and Cancel.
    static constexpr int kTextCtrlId = 13072;
    static constexpr int kYesCtrlId = 1;
    static constexpr int kYesToAllCtrlId = 13027;
    static constexpr int kCancelCtrlId = 2;

    explicit YesYesToAllCancelDialog(QWidget* parent = nullptr);
    ~YesYesToAllCancelDialog() override;

    /// Runs the dialog with `text` and `title` (null or empty: the application's
    /// name); a non-empty `yesToAllText` replaces the caption of Yes to all.
    /// The result is eYes, eYesToAll, or IDCANCEL for Cancel, Escape and closing.
    int NewDoModal(const char* text, const char* title, const char* yesToAllText = nullptr);

    void setVisible(bool visible) override;

protected:
    void reject() override;

private:
    QLabel* mText;
    QPushButton* mYes;
    QPushButton* mYesToAll;
    bool mShown = false;
};
