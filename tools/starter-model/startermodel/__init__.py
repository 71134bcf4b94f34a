"""The recipe of Querlin's two small speech models, trained from synthetic speech only."""
