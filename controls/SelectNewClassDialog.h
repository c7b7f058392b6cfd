#pragma once
// Picks an existing class (or phase) by name, or takes a new name.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>
#include <vector>

class QComboBox;

/// Picks an existing class or phase by name, or takes a new class name.
class SelectNewClassDialog : public TsDialog
{
    Q_OBJECT

public:
    /// `phases` shows the form for phases ("Phase:").
    SelectNewClassDialog(const std::vector<std::string>& names, bool phases, QWidget* parent = nullptr);

    /// The combo's text after OK; empty for the entry "No Class".
    std::string GetSelected() const { return mSelected; }
    QComboBox* GetComboBox() const { return mCombo; }
    int DoModal();

public slots:
    void accept() override;

private:
    QComboBox* mCombo;
    std::string mSelected;
};
