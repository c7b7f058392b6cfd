#pragma once
// The "Operations" menu of the workbench: an event written to the journal
// through EventLog, the workbench's event source registered in the registry
// store, and the processor load watched by a ProcessorMonitor, shown in the
// message bar once a second.

class TessmaMDIFrame;

/// Command ids of the operations demos.
enum EOperationsDemo : unsigned int
{
    eDemoWriteEvent = 34600,         // one information entry under the source "Workbench"
    eDemoRegisterSource = 34601,     // CreateEventSource("Workbench", "Application"), or why not
    eDemoProcessorLoad = 34602       // starts or stops watching the processor load
};

/// Adds the "&Operations" menu with the commands above to `frame`.
void AddOperationsDemos(TessmaMDIFrame& frame);
