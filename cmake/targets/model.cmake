# model
