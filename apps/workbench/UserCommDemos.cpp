#include "UserCommDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/frame/MemoryUserComm.h>
#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>

#include <KORVAutl/UserComm.h>

#include <QMenu>

#include <string>

namespace {

const char* AnswerName(int answer)
{
    switch (answer) {
    case 1: return "Yes";
    case 2: return "Yes to All";
    case 3: return "No";
    case 4: return "No to All";
    case 5: return "Cancel";
    default: return "none";
    }
}

// The channel the demos talk through; the message bar says so when there is none.
UserComm* Channel(TessmaMDIFrame& frame)
{
    UserComm* channel = UserComm::GetUserComm();
    if (!channel)
        frame.SetMessageText("No user channel is installed.");
    return channel;
}

std::string MissingReferences()
{
    std::string text = "These samples have no reference value:\n";
    for (int sample = 1; sample <= 40; ++sample)
        text += "  Sample " + std::to_string(100 + sample * 3) + " (batch 2024-1" + std::to_string(10 + sample % 7) +
                ")\n";
    text += "Leave them out of the calibration?";
    return text;
}

// What a long copy does: asks per file, and tells per file what it did. Inside
// the scope a "to all" answer is given once, and the reports come in one piece.
std::string CopyFiles()
{
    const char* files[] = {"wheat_protein.csv", "wheat_moisture.csv", "barley_protein.csv", "barley_moisture.csv",
                           "rye_fibre.csv"};
    int replaced = 0;
    int kept = 0;
    int lastAnswer = -1;
    {
        MemoryUserComm scope;
        scope.SetHeader("Export to /data/export:\n");
        scope.SetPrefix("  ");
        for (const char* file : files) {
            UserComm* channel = UserComm::GetUserComm();
            const std::string question = std::string("The file ") + file + " exists in the export folder. Replace it?";
            const int answer = channel->AskUserYesYesToAllNoNoToAllCancel(
                question.c_str(), "Exported before: 2024-03-01 14:12\nThis export: now", "Export", 1);
            if (answer == 5) {
                channel->InformUser("The export was cancelled.", "Export", 0);
                break;
            }
            const bool replace = answer == 1;
            if (replace)
                ++replaced;
            else
                ++kept;
            channel->InformUser((std::string(file) + (replace ? " replaced." : " kept.")).c_str(), "Export", 0);
        }
        lastAnswer = scope.GetLastAnsver();
    }
    return "Export: " + std::to_string(replaced) + " replaced, " + std::to_string(kept) + " kept, last answer " +
           AnswerName(lastAnswer);
}

} // namespace

void AddUserCommDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, QObject::tr("&Dialogs"), QObject::tr("&Ask and inform"));
    frame.AddCommand(menu, eDemoAskYesNo, QObject::tr("&Yes/No question"));
    frame.AddCommand(menu, eDemoAskLongQuestion, QObject::tr("&Long question"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoInformSilence, QObject::tr("&Inform, may be silenced"));
    frame.AddCommand(menu, eDemoInformAgain, QObject::tr("Show that inform &again"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoCopyScope, QObject::tr("&Export with \"to all\" answers"));
    frame.AddCommand(menu, eDemoFatalError, QObject::tr("&Fatal error"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoAskYesNo, [target] {
        if (UserComm* channel = Channel(*target)) {
            const int answer = channel->AskUserYesNo("Discard the changes to calibration \"Wheat 2024\"?", "Calibration", 3);
            target->SetMessageText(std::string("Yes/No question: ") + AnswerName(answer));
        }
    });
    frame.OnCommand(eDemoAskLongQuestion, [target] {
        if (UserComm* channel = Channel(*target)) {
            const int answer = channel->AskUserYesNo(MissingReferences().c_str(), "Calibration", 1);
            target->SetMessageText(std::string("Long question: ") + AnswerName(answer));
        }
    });
    frame.OnCommand(eDemoInformSilence, [target] {
        if (UserComm* channel = Channel(*target)) {
            channel->InformUser("Spectra are smoothed before the derivative is taken.", "Pre-treatment",
                                kDemoSilenceId);
            target->SetMessageText("Inform done");
        }
    });
    frame.OnCommand(eDemoInformAgain, [target] {
        const bool deleted = TsDeleteRegValue(HKEY_CURRENT_USER, korva::GetInformSilenceKeyName().c_str(),
                                              korva::GetInformSilenceValueName(kDemoSilenceId).c_str());
        target->SetMessageText(deleted ? "The inform will be shown again" : "The silence could not be taken back");
    });
    frame.OnCommand(eDemoCopyScope, [target] {
        if (Channel(*target))
            target->SetMessageText(CopyFiles());
    });
    frame.OnCommand(eDemoFatalError, [target] {
        if (UserComm* channel = Channel(*target)) {
            channel->FatalError("The model file /data/models/wheat.tsm is damaged and cannot be read.\n"
                                "The model was not loaded.",
                                "Open model");
            target->SetMessageText("Fatal error reported; the application goes on");
        }
    });
}
