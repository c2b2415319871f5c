# shell
