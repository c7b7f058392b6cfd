#pragma once
/// \class PrintDC
/// A printer's device context: the page calls of a print job (documents,
/// pages, escapes, device capabilities) over a QPrinter and the QPainter that
/// draws on it.
///
/// All documents of one device context go into one output, which is finished
/// when the context is destroyed: a file then holds every copy printed through
/// it. A document started and never ended is dropped.

#include <memory>
#include <string>

class QPainter;
class QPrinter;
class QRect;
class QImage;

class PrintDC
{
public:
    /// GetDeviceCaps indices.
    enum EDeviceCaps
    {
        HORZRES = 8,     // printable width in device pixels
        VERTRES = 10,    // printable height in device pixels
        LOGPIXELSX = 88, // device pixels per inch across
        LOGPIXELSY = 90  // device pixels per inch down
    };
    /// Escape codes.
    enum EEscape
    {
        NEWFRAME = 1,        // ends the page
        NEXTBAND = 3,        // banding: never supported here
        QUERYESCSUPPORT = 8, // input: an escape code; answers 1 if supported
        SETCOPYCOUNT = 17,   // input: copies wanted; output: copies the device makes itself
        BANDINFO = 24
    };

    /// Takes over `printer`, whose settings the job uses.
    explicit PrintDC(std::unique_ptr<QPrinter> printer);
    ~PrintDC();
    PrintDC(const PrintDC&) = delete;
    PrintDC& operator=(const PrintDC&) = delete;

    QPrinter& GetPrinter() { return *mPrinter; }
    /// The painter of the open document; inactive outside one.
    QPainter& GetPainter() { return *mPainter; }

    int GetDeviceCaps(int index) const;
    /// Starts a document named `name`: above 0 on success, -1 when the device
    /// cannot be opened.
    int StartDoc(const char* name);
    /// Above 0 when a page is ready for drawing.
    int StartPage();
    /// Above 0 when the page is finished; -1 outside a document.
    int EndPage();
    /// Above 0 when the document is finished.
    int EndDoc();
    /// Escape `escape` with `input`; `output` (may be null) receives what the
    /// escape gives back. 0 for an escape the device does not support.
    int Escape(int escape, int input, int* output);
    /// Draws `image` stretched into `target`: the number of lines drawn, 0 on failure.
    int StretchDIBits(const QRect& target, const QImage& image);

private:
    std::unique_ptr<QPrinter> mPrinter;
    std::unique_ptr<QPainter> mPainter;
    bool mDocumentOpen = false;
    bool mPageOpen = false;
    int mPagesStarted = 0;
    int mDocumentsEnded = 0;
};
