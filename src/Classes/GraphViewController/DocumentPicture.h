// What a picture of a document's plot shows.
#pragma once

#include "Classes/PlotView/PlotPicture.h"

class MoxDocument;

/// The document's options and curves as they are now, without a legend until the caller asks for one.
PlotPictureOptions pictureOptionsOf(const MoxDocument& document);
