# axes: values to pixels, ticks and texts. Labels are plain values.
