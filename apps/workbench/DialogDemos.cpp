#include "DialogDemos.h"

#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/InfoDialog.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/ScrollMessageBox.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>
#include <KORVAutlwin/frame/YesNoToAll.h>
#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QMenu>
#include <QStatusBar>

#include <string>

namespace {

const char* AnswerName(int answer)
{
    switch (answer) {
    case IDOK: return "OK";
    case IDCANCEL: return "Cancel";
    case IDABORT: return "Abort";
    case IDRETRY: return "Retry";
    case IDIGNORE: return "Ignore";
    case IDYES: return "Yes";
    case IDNO: return "No";
    case IDCLOSE: return "Close";
    case 101: return "Yes";
    case 102: return "Yes to All";
    case 103: return "No";
    case 104: return "No to All";
    default: return "none";
    }
}

void Report(TsFrameWnd& frame, const std::string& what)
{
    frame.statusBar()->showMessage(QString::fromStdString(what));
}

std::string LongReport()
{
    std::string text = "The import of batch 2024-117 finished with warnings.\n\n";
    const char* reasons[] = {"the value is outside the calibration range", "the time stamp is missing",
                             "the sample was measured twice", "the detector reported saturation"};
    for (int row = 1; row <= 60; ++row)
        text += "Row " + std::to_string(row * 7) + ": " + reasons[row % 4] + ".\n";
    return text;
}

} // namespace

void AddDialogDemos(TsFrameWnd& frame)
{
    QMenu* menu = frame.AddCommandMenu(QObject::tr("&Dialogs"));
    frame.AddCommand(menu, eDemoMessageBox, QObject::tr("&Message box"));
    frame.AddCommand(menu, eDemoMessageBoxCaptions, QObject::tr("Message box with own &captions"));
    frame.AddCommand(menu, eDemoLongMessageBox, QObject::tr("Message box with &long text"));
    frame.AddCommand(menu, eDemoErrorBox, QObject::tr("&Error message"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoDontShowAgain, QObject::tr("&Don't show again"));
    frame.AddCommand(menu, eDemoCheckBox, QObject::tr("Message box with check bo&x"));
    frame.AddCommand(menu, eDemoScrollMessageBox, QObject::tr("&Scrolling message box"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoDetails, QObject::tr("De&tails dialog"));
    frame.AddCommand(menu, eDemoDetailsDontShowAgain, QObject::tr("Details dialog with don't show a&gain"));
    frame.AddCommand(menu, eDemoInfo, QObject::tr("&Information dialog"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoYesNo, QObject::tr("&Yes/No with details"));
    frame.AddCommand(menu, eDemoYesNoCancelAll, QObject::tr("Yes, No, Cancel &all"));
    frame.AddCommand(menu, eDemoYesNoToAll, QObject::tr("Yes, Yes to All, &No"));
    frame.AddCommand(menu, eDemoYesNoToAllInverted, QObject::tr("No, No to All, Y&es"));
    frame.AddCommand(menu, eDemoYesYesToAllCancel, QObject::tr("Yes, Yes to All, Canc&el"));

    TsFrameWnd* target = &frame;
    frame.OnCommand(eDemoMessageBox, [target] {
        const int answer = TsMessageBox("Save the changes to calibration \"Wheat 2024\" before closing?",
                                        MB_YESNOCANCEL | MB_ICONQUESTION);
        Report(*target, std::string("Message box: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoMessageBoxCaptions, [target] {
        const int answer = TsMessageBox("The model has changed since it was last validated.", MB_YESNO | MB_ICONQUESTION,
                                        "&Validate now", "&Later");
        Report(*target, std::string("Own captions: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoLongMessageBox, [target] {
        const int answer = TsMessageBox(
            "Predict", "The prediction used 412 of 415 samples. Three samples were left out because their spectra lie "
                       "outside the range of the calibration set, which would make their predicted values unreliable; "
                       "see the outlier list in the report for the sample names and their leverage values. "
                       "Do you want to open the report now?",
            MB_YESNO | MB_ICONASTERISK);
        Report(*target, std::string("Long text: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoErrorBox, [target] {
        const int answer = TsAfxMessageBox("The file /srv/data/wheat.tsx could not be opened: it is locked by another user.",
                                           MB_OK | MB_ICONHAND);
        Report(*target, std::string("Error message: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoDontShowAgain, [target] {
        const int answer = TsDontShowAgainMessageBox(
            "WorkbenchDemo", "Deleting a sample also removes it from every model that uses it.\nDelete the sample?",
            MB_YESNO | MB_ICONEXCLAMATION);
        Report(*target, std::string("Don't show again: ") + AnswerName(answer) +
                            (ShowDontShowAgainMessage("WorkbenchDemo") ? "" : " (remembered)"));
    });
    frame.OnCommand(eDemoCheckBox, [target] {
        bool checked = false;
        const int answer = CheckBoxMessageBox("The spectra will be smoothed before the derivative is taken.", checked,
                                              MB_OKCANCEL | MB_ICONASTERISK, "&Always smooth first", 1001);
        Report(*target, std::string("Check box: ") + AnswerName(answer) + (checked ? ", checked" : ", not checked"));
    });
    frame.OnCommand(eDemoScrollMessageBox, [target] {
        const int answer = TsScrollMessageBox(LongReport().c_str(), MB_OK | MB_ICONASTERISK, "Import report");
        Report(*target, std::string("Scrolling box: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoDetails, [target] {
        DetailsDialog("2 of 5 favourites could not be opened.",
                      "Wheat protein: The file /srv/data/wheat.tsx does not exist.\r\n"
                      "Barley moisture: Not available.",
                      "Favourites", MB_ICONERROR);
        Report(*target, "Details dialog closed");
    });
    frame.OnCommand(eDemoDetailsDontShowAgain, [target] {
        DetailsDialogDontShowAgain("WorkbenchDetailsDemo", "The audit trail was saved.",
                                   "The file audit.xml and its style sheet audit_trail.xsl were written to the "
                                   "project folder.\nKeep both files together to view the audit trail.",
                                   "Audit trail", MB_ICONASTERISK);
        Report(*target, "Details dialog with don't show again closed");
    });
    frame.OnCommand(eDemoInfo, [target] {
        InfoDialog dialog("What is new in this version\n\n"
                          "- Models can be validated against a second test set.\n"
                          "- The audit trail records who changed a calibration.\n"
                          "- Reports open in the tabbed workspace.\n\n"
                          "Show the tour of the new features now?",
                          "What's new");
        dialog.SetButtons(InfoDialog::eYes | InfoDialog::eNo, InfoDialog::eYes);
        dialog.SetDefaultSize(InfoDialog::eMediumSize);
        dialog.EnableDontShowAgain("WorkbenchInfoDemo");
        Report(*target, std::string("Information dialog: ") + AnswerName(dialog.DoModal()));
    });
    frame.OnCommand(eDemoYesNo, [target] {
        YesNoDialog dialog("The following samples have no reference value. Leave them out of the calibration?",
                           "Sample 17 (batch 2024-117)\nSample 18 (batch 2024-117)\nSample 203 (batch 2024-121)",
                           "Calibration", 1, WinApp::GetApp() ? WinApp::GetApp()->GetMainWnd() : nullptr);
        Report(*target, std::string("Yes/No dialog: ") + (dialog.exec() == IDOK ? "Yes" : "No"));
    });
    frame.OnCommand(eDemoYesNoCancelAll, [target] {
        YesNoCancelAll dialog("The file already exists. Replace it?",
                              "~/Export/wheat_protein.csv\nSize 48 KB, changed 2024-03-01 14:12", "Export",
                              YesNoCancelAll::eYes, WinApp::GetApp() ? WinApp::GetApp()->GetMainWnd() : nullptr);
        const YesNoCancelAll::ButtonPressed pressed = dialog.DoModal();
        const char* names[] = {"Yes", "No", "Yes to All", "No to All", "Cancel", "none"};
        Report(*target, std::string("Yes, No, Cancel all: ") + names[pressed]);
    });
    frame.OnCommand(eDemoYesNoToAll, [target] {
        YesNoToAll dialog(WinApp::GetApp() ? WinApp::GetApp()->GetMainWnd() : nullptr, false);
        const int answer = dialog.NewDoModal("Convert sample 4 of 40 to the new unit of measure?", "Convert");
        Report(*target, std::string("Yes/No to All: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoYesNoToAllInverted, [target] {
        YesNoToAll dialog(WinApp::GetApp() ? WinApp::GetApp()->GetMainWnd() : nullptr, true);
        const int answer = dialog.NewDoModal("Skip the locked file wheat.tsx and go on with the others?", "Copy");
        Report(*target, std::string("Inverted: ") + AnswerName(answer));
    });
    frame.OnCommand(eDemoYesYesToAllCancel, [target] {
        YesYesToAllCancelDialog dialog(WinApp::GetApp() ? WinApp::GetApp()->GetMainWnd() : nullptr);
        const int answer = dialog.NewDoModal("Recalculate model 3 of 12 with the new pre-treatment?", "Recalculate",
                                             "Recalculate &all");
        Report(*target, std::string("Yes, Yes to All, Cancel: ") + AnswerName(answer));
    });
}
