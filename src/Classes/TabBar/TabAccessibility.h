// What assistive technology learns of tab bars and tabs.
#pragma once

/// Bars are lists of page tabs, tabs are page tabs that can be selected. May be called any number of times.
void installTabAccessibility();
