# axes
