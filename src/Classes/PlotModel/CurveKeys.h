// The keys of a curve that are observed, in the order in which their observers list them.
#pragma once

/// What a curve observes of itself: each of these makes it be drawn again.
inline constexpr const char* curveSelfObservedKeys[] = {"dataSource",
                                                        "color",
                                                        "isVisible",
                                                        "colorAlpha",
                                                        "lineWidth",
                                                        "ticksShape",
                                                        "ticksSize",
                                                        "x_data_index",
                                                        "x_uses_expression",
                                                        "x_data_expression",
                                                        "y_data_index",
                                                        "y_uses_expression",
                                                        "y_data_expression",
                                                        "pointsize_uses_expression",
                                                        "pointsize_data_expression"};

/// What a document observes for undo. Kept: the point-size keys are not among them, so they make no undo
/// step.
inline constexpr const char* curveUndoKeys[] = {"dataSource",        "color",
                                                "isVisible",         "x_data_index",
                                                "x_uses_expression", "x_data_expression",
                                                "y_data_index",      "y_uses_expression",
                                                "y_data_expression", "colorAlpha",
                                                "lineWidth",         "ticksShape",
                                                "ticksSize",         "title"};
