// The settings views that this program has for its kinds of data sources.
#pragma once

/// Hands the makers of the views to the sources; called once, by `main` or by a test.
void installSourceViews();
