# render: curves to images and vectors, layout and drawing of the plot, pictures of it. No widgets.
