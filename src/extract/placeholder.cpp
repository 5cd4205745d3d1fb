namespace beacon {}
