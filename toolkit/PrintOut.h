#pragma once
/// \class PrintOut
/// What TSPrinter prints: a document that knows its pages and draws each one.
/// TSPrinter::Print calls, in this order: the document's name, orientation and
/// page range; BeginPrinting with the device and the page size; per page
/// HasPage, GetPageRect and PrintPage; EndCopy after each pass; EndPrinting
/// at the end of the job.

#include <QPageLayout>
#include <QRect>

#include <string>

class PrintDC;

class PrintOut
{
public:
    virtual ~PrintOut();

    /// The job's name in the printer's queue.
    virtual std::string GetDocumentName() const = 0;
    /// The orientation the pages are made for; set on the device before its size is read.
    virtual QPageLayout::Orientation GetOrientation() const = 0;
    /// The first page number of the document.
    virtual int GetFirstPage() const = 0;
    /// The last page number that may exist; HasPage decides where the document ends.
    virtual int GetLastPage() const = 0;
    /// The job begins on `dc`, whose printable area is `width` by `height` device pixels.
    virtual void BeginPrinting(PrintDC& dc, int width, int height) = 0;
    /// Whether page `page` exists.
    virtual bool HasPage(int page) const = 0;
    /// The part of the printable area that page `page` uses; an empty one leaves the page blank.
    virtual QRect GetPageRect(int page) const = 0;
    /// Draws page `page` into `rect` with dc.GetPainter().
    virtual void PrintPage(PrintDC& dc, int page, const QRect& rect) = 0;
    /// One copy of the document has been printed.
    virtual void EndCopy() = 0;
    /// The job is over.
    virtual void EndPrinting() = 0;
};
