// Who takes what was dropped on the drop zone.
#pragma once

#include <QString>

class XDropHereView;

class XDropHereDelegate {
  public:
    virtual ~XDropHereDelegate() = default;

    /// `path` is a path of the local file system, never a URL.
    virtual void fileDroppedOnDropzone(const QString& path, XDropHereView& dropzone) = 0;
    virtual void textDroppedOnDropzone(const QString& text, XDropHereView& dropzone) = 0;
};
