# render
