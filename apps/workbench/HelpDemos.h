#pragma once
// The workbench's own help file, compiled from the pages in resources/help when
// the workbench is built and kept beside the program. The "&Help" menu opens
// the help window on its contents, index and search, a topic by map id, and a
// help pane whose "app:" links run workbench commands.

class TessmaMDIFrame;

/// Command ids of the help demos.
enum EHelpDemo : unsigned int
{
    eDemoHelpContents = 35100,
    eDemoHelpIndex = 35101,
    eDemoHelpSearch = 35102,
    eDemoHelpTopicById = 35103,
    eDemoHelpPane = 35104,
};

/// Map ids of the workbench's help topics.
enum EHelpTopic : unsigned int
{
    eTopicWelcome = 1000,
    eTopicPane = 1010,
    eTopicMapIds = 1020,
};

/// Adds the help demos to the "&Help" menu of `frame`.
void AddHelpDemos(TessmaMDIFrame& frame);
