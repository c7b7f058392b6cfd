#pragma once
// The workbench's audit trail: one trail per workbench session, kept in the
// user's data folder, with its settings in the application's settings file.
// Every menu command the user runs adds an event. The "&Audit" menu opens the
// trail's view, its settings page, an HTML view whose "app:" links run
// workbench commands, and the extended user information.

class TessmaMDIFrame;

/// Command ids of the audit demos.
enum EAuditDemo : unsigned int
{
    eDemoAuditTrailView = 34700,
    eDemoAuditTrailSettings = 34701,
    eDemoHtmlCommands = 34702,
    eDemoExtendedUserInfo = 34703
};

/// Opens the session's trail and adds the "&Audit" menu to `frame`.
void AddAuditDemos(TessmaMDIFrame& frame);
