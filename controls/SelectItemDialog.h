#pragma once
// A dialog that lets the user pick one item, check several, or check several
// and mark one option, from a one-column list.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>
#include <vector>

class QLabel;
class QRadioButton;
class TsListCtrl;

/// Picks one item, or checks several (optionally with one marked option), from a one-column list.
class SelectItemDialog : public TsDialog
{
    Q_OBJECT

public:
    enum EKind
    {
        eSingleSelect,
        eMultiSelect,
        eOptionMultiSelect
    };
    /// Context menu commands of the multiple form.
    enum ECommand
    {
        eSelectAllItems = 1025,
        eUnselectAllItems = 1026,
        eSelectComplement = 1027,
        eSelectAllMarked = 1028,
        eUnselectAllMarked = 1029
    };
    /// Ids of the six option buttons.
    static constexpr unsigned int kOptionIds[6] = {16260, 16261, 16266, 16267, 16268, 16270};

    /// `header` titles the list's column; an empty one hides the header. `flag`
    /// is the caller's, handed on as it is.
    SelectItemDialog(EKind kind, const char* title, const char* prompt, const char* header,
                     const std::vector<std::string>& items, bool flag, QWidget* parent = nullptr);

    /// Single form: the index to select at start, and the chosen one after OK (-1 none).
    void SetSelected(int index);
    int GetSelected() const { return mSelected; }
    /// Multiple forms: the rows checked at start, and after OK.
    void SetChecked(const std::vector<int>& rows);
    const std::vector<int>& GetChecked() const { return mChecked; }
    /// Option form: up to six texts; `option` (1 to 6) is marked at start, 0 none.
    void SetOptions(const std::vector<std::string>& options, int option);
    int GetOption() const { return mOption; }
    bool GetFlag() const { return mFlag; }

    TsListCtrl* GetList() const { return mList; }
    QRadioButton* GetOptionButton(int number) const;
    /// Runs a context menu command.
    void OnCommand(int command);
    /// IDOK or IDCANCEL.
    int DoModal();

public slots:
    void accept() override;

private:
    void ShowContextMenu(const QPoint& at);

    EKind mKind;
    bool mFlag;
    TsListCtrl* mList;
    std::vector<QRadioButton*> mOptionButtons;
    int mSelected = -1;
    std::vector<int> mChecked;
    int mOption = 0;
};

int TsSingleSelectItemDialog(const char* title, const char* prompt, const char* header,
                             const std::vector<std::string>& items, int* selected, bool flag,
                             QWidget* parent = nullptr);
int TsMultiSelectItemDialog(const char* title, const char* prompt, const char* header,
                            const std::vector<std::string>& items, std::vector<int>* checked, bool flag,
                            QWidget* parent = nullptr);
int TsOptionMultiSelectItemDialog(const char* title, const char* prompt, const char* header,
                                  const std::vector<std::string>& items, const std::vector<std::string>& options,
                                  std::vector<int>* checked, int* option, bool flag, QWidget* parent = nullptr);
