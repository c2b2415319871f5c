# velquin
