#pragma once
// Printing in the workbench: the File menu prints the active document window
// as a picture under the suite's footer line, through the print dialog or
// straight into a PDF file; where no printer is installed the dialog starts on
// a PDF file in the documents folder. The Toolkit menu opens a document with
// the missing data map of a table.

class TessmaMDIFrame;

/// Command ids of the printing demos.
enum EPrintDemo : unsigned int
{
    eDemoPrintWindow = 34400,   // File > Print...: the print dialog, then the active window
    eDemoPrintToPdf = 34401,    // File > Print to PDF: the active window into a PDF file, without asking
    eDemoPrinterSetup = 34402,  // File > Page setup...
    eDemoMissingDataMap = 34410 // Toolkit > Missing data map
};

/// Adds the commands above to `frame`: the printing commands to its File
/// menu, before Exit, and the document to its Toolkit menu.
void AddPrintDemos(TessmaMDIFrame& frame);
