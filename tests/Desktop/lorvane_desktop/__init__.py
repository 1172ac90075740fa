"""What the tests in the virtual desktop, and the demonstration, are made of."""
