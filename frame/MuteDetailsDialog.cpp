#include <KORVAutlwin/frame/MuteDetailsDialog.h>

MuteDetailsDialog* MuteDetailsDialog::Instance()
{
    // Never destroyed: messages may be collected until the process ends.
    static MuteDetailsDialog* instance = new MuteDetailsDialog;
    return instance;
}

void MuteDetailsDialog::Collect(const char* text, const char* details, const char* title, unsigned int nType)
{
    messages.push_back({text ? text : "", details ? details : "", title ? title : "", nType});
}
