"""What bench/run is made of: a set under load, its floors, the table and the plots."""
