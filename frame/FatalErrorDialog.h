#pragma once
/// \class FatalErrorDialog
/// A long message in a scrolling, read-only text, with an OK button. Used for
/// fatal errors (a line below says that the application must end) and for long
/// informations (the line is hidden).

#include <KORVAutlwin/frame/TsDialog.h>

class QLabel;
class QPlainTextEdit;

class FatalErrorDialog : public TsDialog
{
    Q_OBJECT

public:
    /// The dialog for `text` with window title `title` (null or empty: the
    /// application's name). The text is control 10001; the line below it,
    /// control 10000, says that the application must end and is hidden when
    /// `inform` is true. Run it with exec().
    FatalErrorDialog(const char* text, const char* title, QWidget* parent, bool inform);
    ~FatalErrorDialog() override;

private:
    QPlainTextEdit* mText;
    QLabel* mEndNotice;
};
