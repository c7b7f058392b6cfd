#pragma once
/// \class YesNoToAll
/// A question with one "to all" answer, in two senses. Plain: Yes, Yes to all
/// and No. Inverted: No, No to all and Yes. The button that Return presses
/// (control 1) gives the first answer of the sense, the to-all button (13027)
/// its to-all answer, and button 13029 the opposite answer.

#include <KORVAutlwin/frame/TsDialog.h>

class QLabel;
class QPushButton;

class YesNoToAll : public TsDialog
{
    Q_OBJECT

public:
    /// Results of NewDoModal.
    enum EResult
    {
        eYes = 101,
        eYesToAll = 102,
        eNo = 103,
        eNoToAll = 104
    };

    static constexpr unsigned int kTemplateId = 13119;
    /// Control ids: the text, the to-all button, the opposite button and the first button.
    static constexpr int kTextCtrlId = 13072;
    static constexpr int kToAllCtrlId = 13027;
    static constexpr int kOppositeCtrlId = 13029;
    static constexpr int kFirstCtrlId = 1;

    /// `invert` chooses the sense: false Yes / Yes to all / No with the captions
    /// of language strings 13346 to 13348, true No / No to all / Yes with 13343
    /// to 13345 (each set in the order to-all, opposite, first button).
    YesNoToAll(QWidget* parent, bool invert);
    ~YesNoToAll() override;

    /// Runs the dialog with `text` and `title` (null or empty: the application's
    /// name). The result is one of EResult; Escape or closing the window gives
    /// IDCANCEL (2).
    int NewDoModal(const char* text, const char* title);

    void setVisible(bool visible) override;

protected:
    void reject() override;

private:
    QLabel* mText;
    QPushButton* mFirst;
    bool mShown = false;
};
